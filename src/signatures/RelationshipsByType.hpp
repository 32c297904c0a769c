#pragma once

#include <opc/core/Exception.hpp>
#include <opc/model/RelationshipSource.hpp>

#include <cstddef>
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

/// Most relationships that one signature can cover, each counted as often as it is selected.
constexpr std::size_t MAXIMUM_SELECTED = 10000000;

/// Appends the relationships of one selector to those that a signature covers.
/// @throws opc::Exception  if they grow too many: a small document can name a type as often as it likes
inline void appendSelected(const std::vector<Relationship>& found, std::vector<Relationship>& selected) {
    if (selected.size() + found.size() > MAXIMUM_SELECTED)
        throw Exception("A signature can't cover more than " + std::to_string(MAXIMUM_SELECTED) +
                        " selected relationships.");
    selected.insert(selected.end(), found.begin(), found.end());
}

} // namespace opc::model
