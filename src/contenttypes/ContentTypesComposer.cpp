#include "contenttypes/ContentTypesComposer.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "xml/PlainDocumentComposer.hpp"

#include <opc/model/ContentTypesVocabulary.hpp>

namespace opc::model {

bool composePlainContentTypes(const ContentTypeMap& map, std::string& document) {
    using namespace vocabulary::content_types;
    PlainDocumentComposer composer(document, TYPES, vocabulary::content_types::NAMESPACE);
    const auto add = [&composer](std::string_view element, const ContentType& contentType,
                                 std::string_view keyName, const std::u16string& key) {
        composer.beginChild(element);
        composer.addAttribute(vocabulary::content_types::CONTENT_TYPE, contentType.toString());
        composer.addAttribute(keyName, key);
        composer.endChild();
    };
    for (const auto& [extension, entry] : map.getDefaults())
        if (entry.references != 0)
            add(DEFAULT, entry.contentType, EXTENSION, extension);
    for (const auto& [name, contentType] : map.getOverrides())
        add(OVERRIDE, contentType, PART_NAME, name.toString());
    return composer.end();
}

} // namespace opc::model
