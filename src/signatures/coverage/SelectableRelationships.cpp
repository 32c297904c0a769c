#include "signatures/coverage/SelectableRelationships.hpp"

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/RelationshipsText.hpp"

#include <cstddef>
#include <initializer_list>
#include <vector>

namespace opc::model {

namespace {

/// This many types are looked up by walking all relationships of a source. For more, the relationships are gathered
/// by type.
constexpr std::size_t FEW = 4;

} // namespace

SelectableRelationships::Source& SelectableRelationships::find(const std::u16string& name) {
    recent = sources.try_emplace(recent, name);
    return recent->second;
}

template <typename Relationships>
SelectableRelationships::Group SelectableRelationships::makeGroup(const Relationships& relationships) const {
    if (relationships.begin() == relationships.end())
        return nullptr;
    auto group = std::make_shared<SelectedGroup>();
    for (const Relationship& relationship : relationships) {
        if (origin && leadsToCountersignature(relationship, *origin))
            continue;
        group->relationships.push_back(relationship);
        group->length += RelationshipsText::measure(relationship);
    }
    return group;
}

SelectableRelationships::Group SelectableRelationships::byID(const RelationshipSource& source,
                                                             const std::u16string& name,
                                                             const std::u16string& id) {
    Group& group = find(name).byID[id];
    if (!group)
        group = makeGroup(std::initializer_list<Relationship>{source.getRelationshipByID(id)});
    return group;
}

SelectableRelationships::Group SelectableRelationships::byType(const RelationshipSource& source,
                                                               const std::u16string& name,
                                                               const std::u16string& type) {
    Source& known = find(name);
    const auto found = known.byType.find(type);
    if (found != known.byType.end())
        return found->second;
    if (known.isGathered)
        return nullptr;
    if (known.byType.size() < FEW)
        return known.byType[type] = makeGroup(source.getRelationshipsByType(type));
    gather(source, known);
    const auto gathered = known.byType.find(type);
    return gathered == known.byType.end() ? nullptr : gathered->second;
}

std::shared_ptr<const SignedRelationships> SelectableRelationships::share(SignedRelationships selected) {
    const auto [known, isNew] = shared.try_emplace(selected.selections());
    if (isNew)
        known->second = std::make_shared<SignedRelationships>(std::move(selected));
    return known->second;
}

/// Groups that were returned don't change.
void SelectableRelationships::gather(const RelationshipSource& source, Source& known) const {
    std::map<std::u16string, std::vector<Relationship>> byType;
    for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeNone))
        byType[relationship.getType()].push_back(relationship);
    for (const auto& [type, relationships] : byType)
        known.byType.try_emplace(type, makeGroup(relationships));
    known.isGathered = true;
}

} // namespace opc::model
