#pragma once

#include "Document.hpp"
#include "TextEdits.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::physical::lenient {

/// Changes to a document that are made in its own text: all that doesn't change keeps its bytes, white space around it
/// included. So an element that is added and removed again leaves no trace.
class DocumentEdits {
public:
    using NewAttributes = std::vector<std::pair<std::u16string_view, std::u16string_view>>;

    /// @param edited  must outlive this object
    explicit DocumentEdits(const Document& edited);

    bool areNone() const { return edits.areNone() && added.empty(); }

    /// Removes an element with all that is in it.
    void remove(const Element& element);

    void setValue(const Attribute& attribute, std::u16string_view value);

    /// Adds an empty element as the last one in the root, whose namespace and prefix it has.
    void append(std::u16string_view localName, const NewAttributes& attributes);

    /// Adds an empty element of the root's namespace and prefix in front of another one.
    void insert(const Element& next, std::u16string_view localName, const NewAttributes& attributes);

    /// The changed document, in the encoding of the old one.
    Bytes apply();

private:
    std::u16string compose(std::u16string_view localName, const NewAttributes& attributes) const;
    void insertAdded();

    const Document& edited;
    const std::u16string& text;
    TextEdits edits;
    std::u16string added; ///< new elements, to be inserted together
};

} // namespace opc::physical::lenient
