#include "signatures/coverage/SelectableRelationships.hpp"

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/RelationshipsText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace opc::model {

namespace {

/// This many types are looked up by walking all relationships of a source. For more, the relationships are gathered
/// by type.
constexpr std::size_t FEW = 4;

} // namespace

SelectableRelationships::Source& SelectableRelationships::find(const RelationshipSource& source) {
    recent = sources.try_emplace(recent, &source.getState());
    return recent->second;
}

template <typename Relationships>
SelectableRelationships::Group SelectableRelationships::makeGroup(const Relationships& relationships) const {
    auto group = std::make_shared<SelectedGroup>();
    group->relationships.reserve(relationships.size());
    for (const Relationship& relationship : relationships) {
        if (origin && leadsToCountersignature(relationship, *origin))
            continue;
        group->relationships.push_back(relationship);
        group->length += RelationshipsText::measure(relationship);
    }
    return group;
}

SelectableRelationships::Group SelectableRelationships::byID(const RelationshipSource& source,
                                                             const std::u16string& id) {
    auto& groups = find(source).byID;
    if (const auto found = groups.find(id); found != groups.end())
        return found->second;
    const std::initializer_list<Relationship> relationship{source.getRelationshipByID(id)};
    return groups.emplace(relationship.begin()->values->id, makeGroup(relationship)).first->second;
}

SelectableRelationships::Group SelectableRelationships::byType(const RelationshipSource& source,
                                                               const std::u16string& type) {
    Source& known = find(source);
    if (known.walks == FEW && !known.isGathered)
        gather(source, known);
    if (known.byType.empty())
        known.byType.reserve(FEW);
    const auto place = findPlace(known, type);
    if (place != known.byType.end() && place->type == type)
        return place->group;
    if (known.isGathered)
        return nullptr;
    ++known.walks;
    const auto relationships = source.getRelationshipsByType(type);
    if (relationships.empty())
        return nullptr;
    return known.byType.insert(place, {relationships.begin()->values->type, makeGroup(relationships)})->group;
}

std::vector<SelectableRelationships::OfType>::iterator
SelectableRelationships::findPlace(Source& known, std::u16string_view type) {
    return std::lower_bound(
        known.byType.begin(), known.byType.end(), type,
        [](const OfType& left, std::u16string_view sought) { return compareTexts(left.type, sought) < 0; });
}

std::shared_ptr<const SignedRelationships> SelectableRelationships::share(std::vector<Group> selected) {
    return *shared.insert(std::make_shared<SignedRelationships>(std::move(selected))).first;
}

/// Groups that were returned don't change.
void SelectableRelationships::gather(const RelationshipSource& source, Source& known) const {
    std::map<std::u16string_view, std::vector<Relationship>> byType;
    for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeNone))
        byType[relationship.values->type].push_back(relationship);
    std::vector<OfType> all;
    all.reserve(byType.size());
    for (const auto& [type, relationships] : byType) {
        const auto place = findPlace(known, type);
        const bool isKnown = place != known.byType.end() && place->type == type;
        all.push_back({type, isKnown ? place->group : makeGroup(relationships)});
    }
    known.byType = std::move(all);
    known.isGathered = true;
}

} // namespace opc::model
