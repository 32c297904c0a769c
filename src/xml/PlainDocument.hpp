#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// @file
/// Recognises documents in the plain form that nearly all packages have, at a small part of the parser's
/// cost.
///
/// What is recognised must be valid, and mean the same to the parser: every form is left to it that isn't
/// plain, and every doubt and error.

namespace opc::model {

struct PlainAttribute {
    std::string_view name;
    std::string_view value;
};

/// The attributes of one element: no more than an element of these documents can have.
class PlainAttributes {
public:
    const PlainAttribute* begin() const { return attributes.data(); }
    const PlainAttribute* end() const { return attributes.data() + count; }
    std::size_t size() const { return count; }
    void clear() { count = 0; }

    /// @return false, and nothing has been added, if there is one of that name or no room
    bool add(const PlainAttribute& attribute);

private:
    std::array<PlainAttribute, 4> attributes;
    std::size_t count = 0;
};

/// Called for each child; gives whether it is plain as well.
using PlainChildVisitor = std::function<bool(std::string_view name, const PlainAttributes& attributes)>;

/// Walks a plain document: in ASCII, with an XML declaration of UTF-8 or none, a root without prefix whose
/// only attribute declares its namespace, and in it empty children without prefixes, with white space
/// around them. There are no comments, no entities and no other text, and attributes of one element differ
/// in name.
/// @return whether the document is plain. If not, whatever was visited doesn't count
bool visitPlainDocument(std::string_view document, std::string_view root, std::string_view namespaceURI,
                        const PlainChildVisitor& visitChild);

/// Whether a text is a valid xs:ID of ASCII characters.
bool isPlainID(std::string_view text);

/// Whether a text is a valid and not empty xs:anyURI of a usual form: a path of letters, digits and
/// `-._~/`, alone or behind http or https and the name of a host.
bool isPlainURI(std::string_view text);

/// The text of a plain value.
std::u16string widen(std::string_view value);

} // namespace opc::model
