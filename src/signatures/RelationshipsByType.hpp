#pragma once

#include <opc/model/RelationshipSource.hpp>

#include <string>
#include <unordered_map>
#include <vector>

namespace opc::model {

/// The relationships that one source has now, by type: for as many look-ups as there are relationships, each
/// of which would look at all of them.
class RelationshipsByType {
public:
    /// @throws whatever `RelationshipSource::getRelationships` raises
    explicit RelationshipsByType(const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeNone))
            groups[relationship.getType()].push_back(relationship);
    }

    /// As `RelationshipSource::getRelationshipsByType`, in the same order.
    const std::vector<Relationship>& get(const std::u16string& type) const {
        static const std::vector<Relationship> NONE;
        const auto found = groups.find(type);
        return found == groups.end() ? NONE : found->second;
    }

private:
    std::unordered_map<std::u16string, std::vector<Relationship>> groups;
};

} // namespace opc::model
