#pragma once

#include "xml/PlainMarkup.hpp"

#include <string>
#include <string_view>

namespace opc::model {

/// Composes a document of a root with empty children, byte for byte as the pretty-printing writer would write it, in
/// a fraction of the time.
///
/// Xerces must write documents with a value that isn't plain.
class PlainDocumentComposer {
public:
    /// @param composed  receives the bytes; must outlive this object, and so must `root`
    PlainDocumentComposer(std::string& composed, std::string_view root, std::string_view namespaceURI);

    void beginChild(std::string_view name);

    /// Add the attributes of an element in the order of their names, as Xerces does.
    void addAttribute(std::string_view name, std::u16string_view value);

    void endChild();

    /// @return whether the document is plain. If not, ignore the bytes
    bool end();

private:
    PlainMarkup document;
    std::string_view root;
    bool hasChildren = false;
};

} // namespace opc::model
