#include <opc/model/ContentTypeRules.hpp>

#include "contenttypes/ContentTypeSource.hpp"
#include "contenttypes/ContentTypesScanner.hpp"
#include "names/PartNameGrammar.hpp"
#include "xml/AttributeValues.hpp"
#include "xml/LongTags.hpp"
#include "xml/SchemaType.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>

namespace opc::model {

namespace {

/// @param partName  of a plain document
bool isReadAsItIs(std::string_view partName) {
    return isUsualPartName(partName) ||
           (partName.front() == '/' &&
            ContentTypeRules::findDefectOfPartName(std::u16string(partName.begin(), partName.end())).empty());
}

std::string toLowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

/// @return whether all differ
bool sortUnlessOneRepeats(std::vector<std::string>& keys) {
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) == keys.end();
}

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
        contentTypePattern = makeSchemaType(SchemaType::Name::ContentType);
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

std::optional<ContentTypeRules::PlainEntries> ContentTypeRules::readPlain(std::string_view document) {
    ScannedContentTypes scanned;
    if (!scanContentTypes(document, scanned))
        return std::nullopt;
    PlainEntries entries;
    entries.extensions.reserve(scanned.defaults.size());
    for (const ScannedContentType& entry : scanned.defaults)
        entries.extensions.push_back(toLowerCase(entry.key));
    entries.partNames.reserve(scanned.overrides.size());
    for (const ScannedContentType& entry : scanned.overrides) {
        if (!isReadAsItIs(entry.key))
            return std::nullopt;
        entries.partNames.push_back(toLowerCase(entry.key));
    }
    if (!sortUnlessOneRepeats(entries.extensions) || !sortUnlessOneRepeats(entries.partNames))
        return std::nullopt;
    return entries;
}

std::u16string ContentTypeRules::readPartName(std::u16string_view partName) {
    return collapse(partName);
}

} // namespace opc::model
