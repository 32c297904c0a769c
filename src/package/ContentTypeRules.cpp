#include <opc/model/ContentTypeRules.hpp>

#include "package/ContentTypeSource.hpp"
#include "package/ContentTypesParsers.hpp"
#include "package/ContentTypesScanner.hpp"
#include "xml/AttributeValues.hpp"
#include "xml/LongTags.hpp"
#include "xml/SchemaType.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

namespace opc::model {

namespace {

constexpr char16_t NAMESPACE[] = u"http://schemas.openxmlformats.org/package/2006/content-types";
constexpr char16_t CONTENT_TYPE[] =
    u"http://schemas.openxmlformats.org/package/2006/content-types,ST_ContentType";

} // namespace

ContentTypeRules::ContentTypeRules() = default;
ContentTypeRules::~ContentTypeRules() = default;

std::string ContentTypeRules::findDefectOfExtension(std::u16string_view extension) {
    if (extension.empty())
        return "Extension is empty";
    if (!fitsIntoTag(extension))
        return TAG_IS_TOO_LONG;
    return ContentTypeSource::canHaveDefault(extension) ? "" : "Extension has characters that it can't have";
}

std::string ContentTypeRules::findDefectOfPartName(std::u16string_view partName) {
    static constexpr char INVALID[] = "PartName is not a valid part name";
    const std::u16string name = readPartName(partName);
    if (!fitsIntoTag(name))
        return TAG_IS_TOO_LONG;
    if (!isHeldURI(name))
        return INVALID;
    try {
        const PartName valid(name);
        return {};
    } catch (const InvalidPartName& e) {
        return std::string(INVALID) + ": " + e.what();
    } catch (const InvalidURI&) {
        return INVALID;
    }
}

std::string ContentTypeRules::findDefectOfContentType(std::u16string_view contentType) {
    static constexpr char INVALID[] = "ContentType is not a valid content type";
    if (!fitsIntoTag(contentType))
        return TAG_IS_TOO_LONG;
    if (contentType.empty())
        return "ContentType is empty";
    if (isPlainContentType(contentType))
        return {};
    if (!contentTypePattern)
        contentTypePattern = std::make_unique<SchemaType>(contentTypesParsers(), NAMESPACE, CONTENT_TYPE);
    const std::u16string text(contentType);
    if (!contentTypePattern->accepts(text))
        return INVALID;
    try {
        const ContentType valid(text);
        return {};
    } catch (const InvalidContentType&) {
        return INVALID;
    }
}

std::u16string ContentTypeRules::readPartName(std::u16string_view partName) {
    return collapse(partName);
}

} // namespace opc::model
