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
    const std::size_t mark = key.find_last_of("./");
    return mark == std::string_view::npos || key[mark] == '/' ? std::string_view() : key.substr(mark + 1);
}

bool isTypeOfRelationshipsParts(std::string_view contentType) {
    static const std::u16string expected = PackageHelper::getRelationshipContentType().toString();
    return std::equal(
        contentType.begin(), contentType.end(), expected.begin(), expected.end(),
        [](char own, char16_t unit) { return (own >= 'A' && own <= 'Z' ? own - 'A' + 'a' : own) == unit; });
}

} // namespace

bool ContentTypeTable::take(const ScannedContentTypes& scanned, PartKeys& keys) {
    if (!std::all_of(scanned.overrides.begin(), scanned.overrides.end(), [](const ScannedContentType& entry) {
            return isUsualPartName(entry.key) && extensionOf(entry.key) != RELATIONSHIPS_EXTENSION;
        }))
        return false;
    defaults = sorted(scanned.defaults, keys);
    overrides = sorted(scanned.overrides, keys);
    const std::string_view ofRelationships = find(defaults, RELATIONSHIPS_EXTENSION);
    return !hasTwins(defaults) && !hasTwins(overrides) &&
           (ofRelationships.empty() || isTypeOfRelationshipsParts(ofRelationships));
}

ContentTypeTable::Entries ContentTypeTable::sorted(const std::vector<ScannedContentType>& scanned,
                                                   PartKeys& keys) {
    Entries entries;
    entries.reserve(scanned.size());
    for (const ScannedContentType& one : scanned)
        entries.push_back({keys.keep(one.key), one.contentType});
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return left.key < right.key; });
    return entries;
}

bool ContentTypeTable::hasTwins(const Entries& entries) {
    return std::adjacent_find(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
               return left.key == right.key;
           }) != entries.end();
}

std::string_view ContentTypeTable::find(std::string_view key) const {
    const std::string_view own = find(overrides, key);
    return own.empty() ? find(defaults, extensionOf(key)) : own;
}

std::string_view ContentTypeTable::find(const Entries& entries, std::string_view key) {
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), key,
                         [](const Entry& entry, std::string_view sought) { return entry.key < sought; });
    return found == entries.end() || found->key != key ? std::string_view() : found->contentType;
}

} // namespace opc::model
