#include "checks/Targets.hpp"

#include "hash/TextHash.hpp"

#include <map>
#include <unordered_map>

namespace opc::inspection {

namespace {

using Targets = std::unordered_map<std::string_view, std::string_view, TextHash>;

/// The source of a relationships part, which follows from its name; any other name stays.
std::string sourceOf(const std::string& part) {
    constexpr std::string_view FOLDER = "_rels/";
    constexpr std::string_view EXTENSION = ".rels";
    const std::size_t folder = part.rfind(FOLDER);
    if (folder == std::string::npos || part.size() < folder + FOLDER.size() + EXTENSION.size() ||
        part.compare(part.size() - EXTENSION.size(), EXTENSION.size(), EXTENSION) != 0)
        return part;
    const std::size_t name = folder + FOLDER.size();
    return part.substr(0, folder) + part.substr(name, part.size() - EXTENSION.size() - name);
}

Targets targetsOf(const Subject& subject, const std::string& part) {
    Targets targets;
    if (const RelationshipsView* const view = subject.relationshipsOf(sourceOf(part)); view != nullptr)
        for (const RelationshipView& relationship : view->entries)
            targets.emplace(relationship.id, relationship.target);
    return targets;
}

} // namespace

void nameTargets(const Subject& subject, Report& report) {
    std::map<std::string_view, Targets> byPart;
    for (Finding& finding : report.findings) {
        Place& place = finding.place;
        if (place.relationship.empty() || !place.target.empty())
            continue;
        const auto [entry, isNew] = byPart.try_emplace(place.part);
        if (isNew)
            entry->second = targetsOf(subject, place.part);
        if (const auto found = entry->second.find(place.relationship); found != entry->second.end())
            place.target = found->second;
    }
}

} // namespace opc::inspection
