#pragma once

#include "xml/PlainMarkup.hpp"

#include <string>
#include <string_view>

namespace opc::model {

/// Composes a document of one root with empty children: the very bytes that the pretty-printing writer makes of
/// such a document, at a small part of its cost.
///
/// A document with a value that isn't plain is left to Xerces, and so is one without children.
class PlainDocumentComposer {
public:
    /// @param composed  takes the bytes; must outlive this object, as must `root`
    PlainDocumentComposer(std::string& composed, std::string_view root, std::string_view namespaceURI);

    void beginChild(std::string_view name);

    /// The attributes of an element come in the order of their names: Xerces keeps them so.
    void addAttribute(std::string_view name, std::u16string_view value);

    void endChild();

    /// @return whether the document is plain. If not, its bytes mean nothing
    bool end();

private:
    PlainMarkup document;
    std::string_view root;
    bool hasChildren = false;
};

} // namespace opc::model
