#include "checks/relationships/RelationshipKinds.hpp"

#include "checks/DocumentChecks.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>
#include <unordered_map>

namespace opc::inspection {

namespace {

/// In front of the last segments of the types of office documents.
constexpr std::string_view OFFICE_BASES[] = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/",
    "http://schemas.microsoft.com/office/",
};

/// Sorted. A source has at most one relationship of each.
constexpr std::string_view SINGLE[] = {
    "calcChain",
    "comments",
    "commentAuthors",
    "custom-properties",
    "endnotes",
    "extended-properties",
    "fontTable",
    "footnotes",
    "glossaryDocument",
    "handoutMaster",
    "numbering",
    "officeDocument",
    "presProps",
    "settings",
    "sharedStrings",
    "styles",
    "stylesWithEffects",
    "tableStyles",
    "theme",
    "vbaProject",
    "viewProps",
    "webSettings",
};

/// What a part is by one of these types, it can't be by another. Of signatures another rule tells (M6.3).
constexpr std::string_view EXCLUSIVE[] = {
    "calcChain",    "chart",         "chartsheet",  "comments",    "custom-properties", "extended-properties",
    "fontTable",    "font",          "footer",      "header",      "numbering",         "officeDocument",
    "settings",     "sharedStrings", "slide",       "slideLayout", "slideMaster",       "styles",
    "theme",        "vbaProject",    "webSettings", "worksheet",   "core-properties",   "image",
    "xlMacrosheet", "dialogsheet",   "control",
};

template <std::size_t N>
bool contains(const std::string_view (&all)[N], std::string_view text) {
    return std::find(std::begin(all), std::end(all), text) != std::end(all);
}

bool isOneOf(const RelationshipView& entry, std::initializer_list<std::string_view> types) {
    const std::string_view type = trimmed(entry.type);
    return std::find(types.begin(), types.end(), type) != types.end();
}

} // namespace

bool isCoreProperties(const RelationshipView& entry) {
    return isOneOf(
        entry,
        {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
         "http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/core-properties",
         "http://schemas.openxmlformats.org/officeDocument/2006/relationships/metadata/core-properties"});
}

bool isThumbnail(const RelationshipView& entry) {
    return isOneOf(entry,
                   {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail"});
}

bool isOfficeType(std::string_view type) {
    return std::any_of(std::begin(OFFICE_BASES), std::end(OFFICE_BASES),
                       [type](std::string_view base) { return type.substr(0, base.size()) == base; });
}

bool isUnread(const RelationshipsView& view) {
    return !view.document.failure.empty() || (view.entries.empty() && !view.document.faults.empty());
}

void checkSingleTypes(const RelationshipsView& view, const Place& place, Findings& findings) {
    if (!findings.wants("SEC-37"))
        return;
    std::unordered_map<std::string_view, const RelationshipView*, TextHash> firstOf;
    for (const RelationshipView& entry : view.entries) {
        const std::string_view segment = entry.lastSegment();
        if (!contains(SINGLE, segment) || !isOfficeType(trimmed(entry.type)))
            continue;
        const RelationshipView& first = *firstOf.emplace(segment, &entry).first->second;
        if (&first == &entry || keyOfName(first.resolved) == keyOfName(entry.resolved))
            continue;
        Place at = placeAt(place, entry.line, entry.column);
        at.relationship = entry.id;
        findings.add("SEC-37", at,
                     "There is a second relationship of the type " + std::string(segment) + ", besides " +
                         first.id);
    }
}

bool areInConflict(const RelationshipView& first, const RelationshipView& second) {
    return first.lastSegment() != second.lastSegment() && contains(EXCLUSIVE, first.lastSegment()) &&
           contains(EXCLUSIVE, second.lastSegment());
}

} // namespace opc::inspection
