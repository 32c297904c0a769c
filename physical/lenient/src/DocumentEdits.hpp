#pragma once

#include "Document.hpp"
#include "TextEdits.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::physical::lenient {

/// Changes a document in its own text: whatever doesn't change keeps its bytes, including white space. So an element
/// that is added and removed again leaves no trace.
class DocumentEdits {
public:
    using NewAttributes = std::vector<std::pair<std::u16string_view, std::u16string_view>>;

    /// @param edited  must outlive this object
    explicit DocumentEdits(const Document& edited);

    bool areNone() const { return edits.areNone() && added.empty(); }

    /// Removes an element with its content.
    void remove(const Element& element);

    void setValue(const Attribute& attribute, std::u16string_view value);

    /// Adds an attribute at the end of the start tag.
    void addValue(const Element& element, std::u16string_view attribute, std::u16string_view value);

    /// Adds an empty element at the end of the root, with the namespace and prefix of the root.
    void append(std::u16string_view localName, const NewAttributes& attributes);

    /// Adds such an element before another one.
    void insert(const Element& next, std::u16string_view localName, const NewAttributes& attributes);

    /// The changed document, in the encoding of the old one.
    Bytes apply();

private:
    std::u16string compose(std::u16string_view localName, const NewAttributes& attributes) const;
    void insertAdded();

    const Document& edited;
    const std::u16string& text;
    TextEdits edits;
    std::u16string added; ///< new elements to be inserted together
};

} // namespace opc::physical::lenient
