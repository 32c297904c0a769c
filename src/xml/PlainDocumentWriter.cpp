#include "xml/PlainDocumentWriter.hpp"

#include <algorithm>

namespace opc::model {

namespace {

bool standsAsItIs(char16_t unit) {
    return unit >= u' ' && unit <= u'~' && unit != u'&' && unit != u'<' && unit != u'"';
}

} // namespace

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

void PlainDocumentWriter::addAttribute(std::string_view name, std::u16string_view value) {
    document.append(" ").append(name).append("=\"");
    if (std::all_of(value.begin(), value.end(), standsAsItIs)) { // as nearly always
        const std::size_t begin = document.size();
        document.resize(begin + value.size());
        std::transform(value.begin(), value.end(), document.begin() + static_cast<std::ptrdiff_t>(begin),
                       [](char16_t unit) { return static_cast<char>(unit); });
    } else {
        for (const char16_t unit : value)
            addCharacter(unit);
    }
    document.append("\"");
}

void PlainDocumentWriter::addCharacter(char16_t unit) {
    if (unit == u'&')
        document.append("&amp;");
    else if (unit == u'<')
        document.append("&lt;");
    else if (unit == u'"')
        document.append("&quot;");
    else if (standsAsItIs(unit))
        document.push_back(static_cast<char>(unit));
    else
        hasOnlyPlainValues = false;
}

void PlainDocumentWriter::endChild() {
    document.append("/>\n");
}

bool PlainDocumentWriter::end() {
    document.append("</").append(root).append(">\n");
    return hasChildren && hasOnlyPlainValues;
}

} // namespace opc::model
