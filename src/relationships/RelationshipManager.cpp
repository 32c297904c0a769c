#include "relationships/RelationshipManager.hpp"

#include "relationships/RelationshipSerializer.hpp"

#include <opc/model/Errors.hpp>

#include <utility>

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
    return *entry;
}

std::vector<Relationship> RelationshipManager::getRelationshipsByType(const std::u16string& type) const {
    std::vector<Relationship> result;
    for (const Relationship& relationship : relationships)
        if (*relationship.values->type == type)
            result.push_back(relationship);
    return result;
}

std::vector<Relationship>
RelationshipManager::getRelationships(const std::unordered_set<std::u16string>& excludedTypes) const {
    if (excludedTypes.empty())
        return {relationships.begin(), relationships.end()};
    std::vector<Relationship> result;
    for (const Relationship& relationship : relationships)
        if (excludedTypes.count(*relationship.values->type) == 0)
            result.push_back(relationship);
    return result;
}

Relationship RelationshipManager::addExternalRelationship(const std::u16string& id,
                                                          const std::u16string& type,
                                                          const std::u16string& target) {
    return add(id, std::make_shared<const std::u16string>(type), target, TargetMode::External);
}

Relationship RelationshipManager::addInternalRelationship(const std::u16string& id,
                                                          const std::u16string& type, const URI& target) {
    return add(id, std::make_shared<const std::u16string>(type), target.toString(), TargetMode::Internal);
}

Relationship RelationshipManager::add(std::u16string id, std::shared_ptr<const std::u16string> type,
                                      std::u16string target, TargetMode targetMode) {
    Relationship relationship({std::move(id), std::move(type), sourceURI, std::move(target), targetMode});
    relationships.insert(relationships.end(), relationship);
    dirty = true;
    return relationship;
}

void RelationshipManager::deleteRelationship(const std::u16string& id) {
    const auto entry = relationships.find(id);
    if (entry == relationships.end())
        throwNotFound();
    relationships.erase(entry);
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
