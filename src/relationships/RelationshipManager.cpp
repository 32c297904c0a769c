#include "relationships/RelationshipManager.hpp"

#include "relationships/RelationshipSerializer.hpp"

#include <opc/model/Errors.hpp>

namespace opc::model {

namespace {

[[noreturn]] void throwNotFound() {
    throw RelationshipNotFound("Relationship ID does not exist");
}

} // namespace

Relationship RelationshipManager::getRelationship(const std::u16string& id) const {
    const auto entry = relationships.find(id);
    if (entry == relationships.end())
        throwNotFound();
    return entry->second;
}

std::vector<Relationship> RelationshipManager::getRelationshipsByType(const std::u16string& type) const {
    std::vector<Relationship> result;
    for (const auto& entry : relationships)
        if (entry.second.values->type == type)
            result.push_back(entry.second);
    return result;
}

std::vector<Relationship>
RelationshipManager::getRelationships(const std::unordered_set<std::u16string>& excludedTypes) const {
    std::vector<Relationship> result;
    result.reserve(relationships.size());
    for (const auto& entry : relationships)
        if (excludedTypes.empty() || excludedTypes.count(entry.second.values->type) == 0)
            result.push_back(entry.second);
    return result;
}

Relationship RelationshipManager::addExternalRelationship(const std::u16string& id,
                                                          const std::u16string& type,
                                                          const std::u16string& target) {
    return add(Relationship(id, type, sourceURI, target));
}

Relationship RelationshipManager::addInternalRelationship(const std::u16string& id,
                                                          const std::u16string& type, const URI& target) {
    return add(Relationship(id, type, sourceURI, target));
}

Relationship RelationshipManager::add(Relationship relationship) {
    relationships.emplace_hint(relationships.end(), relationship.values->id, relationship);
    dirty = true;
    return relationship;
}

void RelationshipManager::deleteRelationship(const std::u16string& id) {
    if (relationships.erase(id) == 0)
        throwNotFound();
    dirty = true;
}

void RelationshipManager::read(InputStream& stream, RelationshipSerializer& serializer) {
    relationships.clear();
    dirty = true;
    serializer.read(stream, *this);
    dirty = false;
}

void RelationshipManager::flush(OutputStream& stream, RelationshipSerializer& serializer) {
    if (!dirty)
        return;
    serializer.write(*this, stream);
    dirty = false;
}

} // namespace opc::model
