#include "package/ContentTypesWriter.hpp"

#include "package/ContentTypeMap.hpp"
#include "xml/PlainDocumentWriter.hpp"

namespace opc::model {

bool composePlainContentTypes(const ContentTypeMap& map, std::string& document) {
    PlainDocumentWriter writer(document, "Types",
                               "http://schemas.openxmlformats.org/package/2006/content-types");
    const auto add = [&writer](std::string_view element, const ContentType& contentType,
                               std::string_view keyName, const std::u16string& key) {
        writer.beginChild(element);
        writer.addAttribute("ContentType", contentType.toString());
        writer.addAttribute(keyName, key);
        writer.endChild();
    };
    for (const auto& [extension, entry] : map.getDefaults())
        if (entry.references != 0)
            add("Default", entry.contentType, "Extension", extension);
    for (const auto& [name, contentType] : map.getOverrides())
        add("Override", contentType, "PartName", name.toString());
    return writer.end();
}

} // namespace opc::model
