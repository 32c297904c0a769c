#include "comparison/NameFilter.hpp"

#include "comparison/PackageContents.hpp"
#include "subject/Names.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

/// An item that is no part is called as in the archive, with a slash or without.
std::string keyOfAny(const std::string& name) {
    return keyOfName(name.substr(0, 1) == "/" ? name : "/" + name);
}

bool occursIn(const NamePattern& pattern, const PackageContents& package) {
    const auto& parts = package.parts();
    const auto& items = package.otherItems();
    return pattern.matches("/") ||
           std::any_of(parts.begin(), parts.end(),
                       [&](const KeyedPart& part) { return pattern.matches(part.key); }) ||
           std::any_of(items.begin(), items.end(),
                       [&](const ArchiveItem* item) { return pattern.matches(keyOfAny(item->name)); });
}

template <typename Differences, typename Test>
void keep(Differences& differences, const Test& test) {
    differences.erase(std::remove_if(differences.begin(), differences.end(),
                                     [&](const auto& difference) { return !test(difference); }),
                      differences.end());
}

} // namespace

NameFilter::NameFilter(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const std::string_view slash = name.substr(0, 1) == "/" || name.substr(0, 2) == "**" ? "" : "/";
        patterns.push_back({name, NamePattern(std::string(slash).append(name))});
    }
}

void NameFilter::requireIn(const PackageContents& before, const PackageContents& now) const {
    for (const auto& [name, pattern] : patterns)
        if (!occursIn(pattern, before) && !occursIn(pattern, now))
            throw Exception("Neither package has " + name);
}

void NameFilter::apply(Comparison& comparison) const {
    if (patterns.empty())
        return;
    const auto matchesContent = [this](const ContentDifference& one) { return matches(one); };
    keep(comparison.parts, matchesContent);
    keep(comparison.items, matchesContent);
    keep(comparison.relationships, [this](const RelationshipDifference& one) { return matches(one.source); });
    const auto isCoreProperties = [](const ContentDifference& one) {
        return keyOfType((one.now ? one.now : one.before)->contentType) ==
               "application/vnd.openxmlformats-package.core-properties+xml";
    };
    if (std::none_of(comparison.parts.begin(), comparison.parts.end(), isCoreProperties))
        comparison.properties.clear();
}

bool NameFilter::matches(const std::string& name) const {
    const std::string key = keyOfAny(name);
    return std::any_of(patterns.begin(), patterns.end(),
                       [&key](const Named& one) { return one.pattern.matches(key); });
}

bool NameFilter::matches(const ContentDifference& difference) const {
    return (difference.before && matches(difference.before->name)) ||
           (difference.now && matches(difference.now->name));
}

} // namespace opc::inspection
