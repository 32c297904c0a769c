#include "signatures/RelationshipSelection.hpp"

#include <opc/core/Exception.hpp>

#include <cstddef>
#include <initializer_list>

namespace opc::model {

namespace {

/// A small document can name a type as often as it likes, and be one of many.
constexpr std::size_t MAXIMUM_SELECTED = 10000000;

/// Types that are looked up by walking all relationships of a source, before these are gathered by type.
constexpr int FEW = 4;

} // namespace

template <typename Relationships>
bool RelationshipSelection::add(const Relationships& relationships) {
    if (relationships.size() > MAXIMUM_SELECTED - count)
        throw Exception("The signatures of a package can't cover more than " +
                        std::to_string(MAXIMUM_SELECTED) + " selected relationships.");
    count += relationships.size();
    selected.insert(selected.end(), relationships.begin(), relationships.end());
    return relationships.begin() != relationships.end();
}

void RelationshipSelection::addByID(const RelationshipSource& source, const std::u16string& id) {
    add(std::initializer_list<Relationship>{source.getRelationshipByID(id)});
}

bool RelationshipSelection::addByType(const RelationshipSource& source, const std::u16string& name,
                                      const std::u16string& type) {
    recent = sources.try_emplace(recent, name);
    Source& known = recent->second;
    if (known.timesAsked < FEW) {
        ++known.timesAsked;
        return add(source.getRelationshipsByType(type));
    }
    if (!known.byType) {
        auto byType = std::make_unique<Groups>();
        for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeNone))
            (*byType)[relationship.getType()].push_back(relationship);
        known.byType = std::move(byType);
    }
    const auto found = known.byType->find(type);
    return found != known.byType->end() && add(found->second);
}

} // namespace opc::model
