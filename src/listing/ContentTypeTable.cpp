#include "listing/ContentTypeTable.hpp"

#include "names/PartNameGrammar.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>
#include <string>

namespace opc::model {

namespace {

constexpr std::string_view RELATIONSHIPS_EXTENSION = "rels";

/// The extension of a part name.
/// @param key  of the part name
std::string_view extensionOf(std::string_view key) {
    std::size_t begin = key.size();
    while (begin > 0 && key[begin - 1] != '.' && key[begin - 1] != '/')
        --begin;
    return begin == 0 || key[begin - 1] == '/' ? std::string_view() : key.substr(begin);
}

bool isTypeOfRelationshipsParts(std::string_view contentType) {
    static const std::u16string expected = PackageHelper::getRelationshipContentType().toString();
    return std::equal(
        contentType.begin(), contentType.end(), expected.begin(), expected.end(),
        [](char own, char16_t unit) { return (own >= 'A' && own <= 'Z' ? own - 'A' + 'a' : own) == unit; });
}

} // namespace

bool ContentTypeTable::take(const ScannedContentTypes& scanned, PartKeys& keys) {
    defaults = sorted(scanned.defaults, keys);
    overrides = sorted(scanned.overrides, keys);
    if (hasTwins(defaults) || hasTwins(overrides))
        return false;
    const auto first = std::stable_partition(overrides.begin(), overrides.end(), [](const Entry& entry) {
        return !isRelationshipsPartName(entry.key);
    });
    ofRelationships.assign(first, overrides.end());
    overrides.erase(first, overrides.end());
    next = overrides.begin();
    const std::string_view common = find(defaults, RELATIONSHIPS_EXTENSION);
    return (common.empty() || isTypeOfRelationshipsParts(common)) &&
           std::all_of(ofRelationships.begin(), ofRelationships.end(), [](const Entry& entry) {
               return isUsual(entry) && isTypeOfRelationshipsParts(entry.contentType);
           });
}

ContentTypeTable::Entries ContentTypeTable::sorted(const std::vector<ScannedContentType>& scanned,
                                                   PartKeys& keys) {
    Entries entries;
    entries.reserve(scanned.size());
    for (const ScannedContentType& one : scanned)
        entries.push_back({keys.keep(one.key), one.key, one.contentType});
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return left.key < right.key; });
    return entries;
}

bool ContentTypeTable::hasTwins(const Entries& entries) {
    return std::adjacent_find(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
               return left.key == right.key;
           }) != entries.end();
}

std::string_view ContentTypeTable::findNext(std::string_view key) {
    for (; next != overrides.end(); ++next) {
        const int order = next->key.compare(key);
        if (order == 0)
            return (next++)->contentType;
        if (order > 0)
            break;
        areUsual = areUsual && isUsual(*next);
    }
    return find(defaults, extensionOf(key));
}

bool ContentTypeTable::coversRelationships(std::string_view key) const {
    return !find(defaults, RELATIONSHIPS_EXTENSION).empty() || !find(ofRelationships, key).empty();
}

bool ContentTypeTable::hasUsualRest() {
    return areUsual && std::all_of(next, overrides.cend(), isUsual);
}

bool ContentTypeTable::isUsual(const Entry& entry) {
    return isUsualPartName(entry.written);
}

std::string_view ContentTypeTable::find(const Entries& entries, std::string_view key) {
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), key,
                         [](const Entry& entry, std::string_view sought) { return entry.key < sought; });
    return found == entries.end() || found->key != key ? std::string_view() : found->contentType;
}

} // namespace opc::model
