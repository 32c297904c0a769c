#include "comparison/RelationshipComparison.hpp"

#include "comparison/SortedMerge.hpp"
#include "subject/Names.hpp"

#include <algorithm>
#include <map>

namespace opc::inspection {

namespace {

std::string keyOfSource(const PartView& part) {
    return keyOfName(sourceOfRelationships(part.name));
}

RelationshipVersion versionOf(const RelationshipView& entry) {
    return {entry.id, entry.type, entry.target, resolvedTarget(entry), entry.isExternal};
}

/// The entries sorted by id; of those with the same id, in the order of the document.
std::vector<const RelationshipView*> sortedEntries(const RelationshipsView& view) {
    std::vector<const RelationshipView*> entries;
    for (const RelationshipView& entry : view.entries)
        entries.push_back(&entry);
    std::stable_sort(
        entries.begin(), entries.end(),
        [](const RelationshipView* left, const RelationshipView* right) { return left->id < right->id; });
    return entries;
}

} // namespace

void RelationshipComparison::addSingle(PartView* left, PartView* right) {
    auto& singles = left != nullptr ? removed : added;
    PartView* const part = left != nullptr ? left : right;
    if (!singles.emplace(keyOfSource(*part), part).second)
        pairs.emplace_back(left, right);
}

void RelationshipComparison::addMove(const std::string& from, const std::string& to) {
    const auto left = removed.find(keyOfName(from));
    const auto right = added.find(keyOfName(to));
    if (left == removed.end() || right == added.end())
        return;
    pairs.emplace_back(left->second, right->second);
    removed.erase(left);
    added.erase(right);
}

void RelationshipComparison::run(std::vector<RelationshipDifference>& found) {
    for (const auto& [source, part] : removed)
        pairs.emplace_back(part, nullptr);
    for (const auto& [source, part] : added)
        pairs.emplace_back(nullptr, part);
    std::multimap<std::string, Pair> bySource;
    for (const Pair& pair : pairs)
        bySource.emplace(keyOfSource(*(pair.second != nullptr ? pair.second : pair.first)), pair);
    for (const auto& [source, pair] : bySource)
        compare(pair, found);
}

void RelationshipComparison::compare(const Pair& pair, std::vector<RelationshipDifference>& found) {
    const RelationshipsView left =
        pair.first != nullptr ? before.readRelationships(*pair.first) : RelationshipsView();
    const RelationshipsView right =
        pair.second != nullptr ? now.readRelationships(*pair.second) : RelationshipsView();
    if ((pair.first != nullptr && !isNothingElse(left)) || (pair.second != nullptr && !isNothingElse(right)))
        others.push_back(pair);

    const std::vector<const RelationshipView*> old = sortedEntries(left);
    const std::vector<const RelationshipView*> current = sortedEntries(right);
    const RelationshipsView& last = pair.second != nullptr ? right : left;
    const bool lacksSource = last.sourcePart == nullptr && last.source != "/";
    mergeSorted(
        old, current, [](const RelationshipView* entry) -> const std::string& { return entry->id; },
        [&](const RelationshipView* const* one, const RelationshipView* const* other) {
            if (one != nullptr && other != nullptr && keyOf(**one) == keyOf(**other))
                return;
            RelationshipDifference& difference = found.emplace_back();
            difference.source = last.source;
            difference.lacksSource = lacksSource;
            if (one != nullptr)
                difference.before = versionOf(**one);
            if (other != nullptr)
                difference.now = versionOf(**other);
        });
}

} // namespace opc::inspection
