#include "xml/PlainDocumentWriter.hpp"

namespace opc::model {

PlainDocumentWriter::PlainDocumentWriter(std::string& composed, std::string_view rootName,
                                         std::string_view namespaceURI)
    : document(composed), root(rootName) {
    composed.clear();
    document << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<" << root << " xmlns=\""
             << namespaceURI << "\">\n";
}

void PlainDocumentWriter::beginChild(std::string_view name) {
    document << "  <" << name;
    hasChildren = true;
}

void PlainDocumentWriter::addAttribute(std::string_view name, std::u16string_view value) {
    document.addAttribute(name, value);
}

void PlainDocumentWriter::endChild() {
    document << "/>\n";
}

bool PlainDocumentWriter::end() {
    document << "</" << root << ">\n";
    return hasChildren && document.isPlain();
}

} // namespace opc::model
