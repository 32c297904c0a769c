#include "xml/PlainDocumentWriter.hpp"

namespace opc::model {

PlainDocumentWriter::PlainDocumentWriter(std::string& composed, std::string_view rootName,
                                         std::string_view namespaceURI)
    : document(composed), root(rootName) {
    document = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<";
    document.append(root).append(" xmlns=\"").append(namespaceURI).append("\">\n");
}

void PlainDocumentWriter::beginChild(std::string_view name) {
    document.append("  <").append(name);
    hasChildren = true;
}

void PlainDocumentWriter::addAttribute(std::string_view name, const std::u16string& value) {
    document.append(" ").append(name).append("=\"");
    for (const char16_t unit : value) {
        if (unit == u'&')
            document.append("&amp;");
        else if (unit == u'<')
            document.append("&lt;");
        else if (unit == u'"')
            document.append("&quot;");
        else if (unit >= u' ' && unit <= u'~')
            document.push_back(static_cast<char>(unit));
        else
            hasOnlyPlainValues = false;
    }
    document.append("\"");
}

void PlainDocumentWriter::endChild() {
    document.append("/>\n");
}

bool PlainDocumentWriter::end() {
    document.append("</").append(root).append(">\n");
    return hasChildren && hasOnlyPlainValues;
}

} // namespace opc::model
