#include "xml/PlainDocumentComposer.hpp"

namespace opc::model {

PlainDocumentComposer::PlainDocumentComposer(std::string& composed, std::string_view root,
                                             std::string_view namespaceURI)
    : document(composed), root(root) {
    composed.clear();
    document << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<" << root << " xmlns=\""
             << namespaceURI << "\"";
}

void PlainDocumentComposer::beginChild(std::string_view name) {
    document << (hasChildren ? "  <" : ">\n  <") << name;
    hasChildren = true;
}

void PlainDocumentComposer::addAttribute(std::string_view name, std::u16string_view value) {
    document.addAttribute(name, value);
}

void PlainDocumentComposer::endChild() {
    document << "/>\n";
}

bool PlainDocumentComposer::end() {
    if (hasChildren)
        document << "</" << root << ">\n";
    else
        document << "/>\n";
    return document.isPlain();
}

} // namespace opc::model
