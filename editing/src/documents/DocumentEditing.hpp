#pragma once

#include "lenient/src/Document.hpp"
#include "lenient/src/TextEdits.hpp"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::editing {

namespace lenient = physical::lenient;

/// Changes a document of a few kilobytes or megabytes in its own text: whatever doesn't change keeps its bytes. What is
/// done to an element that is removed doesn't count, in whatever order.
class DocumentEditing {
public:
    using Attributes = std::vector<std::pair<std::u16string_view, std::u16string_view>>;

    /// @throws Exception  the document isn't well-formed, or is too large
    explicit DocumentEditing(const std::string& bytes);

    const lenient::Markup& markup() const { return document.markup(); }
    const lenient::Element& element(std::size_t index) const { return markup().elements()[index]; }
    const std::u16string& text() const { return document.text().text(); }

    void remove(std::size_t element) { removed.insert(element); }
    bool isRemoved(std::size_t element) const { return removed.count(element) != 0; }

    /// Gives an element an attribute without namespace, or another value of it.
    void set(std::size_t element, std::u16string_view name, std::u16string value);
    void removeAttribute(std::size_t element, const lenient::Attribute& attribute);

    /// Replaces a piece that belongs to no element of the above.
    void replace(const lenient::Span& span, std::u16string replacement);

    /// Adds an element at the end of the root, with its namespace and prefix.
    /// @param content  markup; empty for an empty element
    void append(std::u16string_view localName, const Attributes& attributes,
                std::u16string_view content = {});

    /// Replaces all that an element contains.
    /// @param content  markup
    void setContent(std::size_t element, std::u16string_view content);

    /// The name of an element of the root's namespace, with the prefix of the root.
    std::u16string prefixed(std::u16string_view localName) const;

    bool isChanged() const {
        return !removed.empty() || !values.empty() || !dropped.empty() || !replaced.empty() || !added.empty();
    }

    /// The changed document, in the encoding of the old one.
    std::string apply() const;

private:
    bool isWithinRemoved(std::size_t element) const;
    void applyAttributes(lenient::TextEdits& edits) const;
    void applyAdded(lenient::TextEdits& edits) const;

    const lenient::Document document;
    std::set<std::size_t> removed;
    std::map<std::pair<std::size_t, std::u16string>, std::u16string> values;
    std::map<std::size_t, std::pair<std::size_t, lenient::Span>>
        dropped; ///< by where they begin: element, span
    std::vector<std::pair<lenient::Span, std::u16string>> replaced;
    std::u16string added;
};

} // namespace opc::editing
