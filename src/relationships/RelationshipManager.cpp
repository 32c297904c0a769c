#include "relationships/RelationshipManager.hpp"

#include "relationships/RelationshipSerializer.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <utility>

namespace opc::model {

namespace {

[[noreturn]] void throwNotFound(const std::u16string& id) {
    RelationshipNotFound failure("Relationship ID does not exist");
    failure.setRelationship(toUDEString(id));
    throw failure;
}

/// The values of one relationship, with their texts.
struct Alone {
    explicit Alone(const URI& sourceURI) : sourceURI(sourceURI) {}

    const URI sourceURI;
    std::u16string texts;
    RelationshipGroup::Values values{};
};

} // namespace

Relationship RelationshipManager::getRelationship(const std::u16string& id) const {
    SharedValues found = find(id);
    if (!found)
        throwNotFound(id);
    return Relationship(std::move(found));
}

RelationshipManager::SharedValues RelationshipManager::find(std::u16string_view id) const {
    if (!group) {
        const auto entry = relationships.find(id);
        return entry == relationships.end() ? nullptr : *entry;
    }
    const auto& values = group->values();
    const auto precedes = [](const Values& left, std::u16string_view sought) { return left.id < sought; };
    const auto found = std::lower_bound(values.begin(), values.end(), id, precedes);
    return found == values.end() || found->id != id ? nullptr : SharedValues(group, &*found);
}

void RelationshipManager::visit(const std::function<void(const Values&)>& visitor) const {
    if (group) {
        for (const Values& values : group->values())
            visitor(values);
    }
    for (const SharedValues& values : relationships)
        visitor(*values);
}

template <typename Predicate>
std::vector<Relationship> RelationshipManager::select(const Predicate& isWanted) const {
    std::vector<Relationship> result;
    result.reserve(std::min<std::size_t>(size(), 8)); // most sources have no more
    if (group) {
        for (const Values& values : group->values())
            if (isWanted(values))
                result.push_back(Relationship(SharedValues(group, &values)));
    }
    for (const SharedValues& values : relationships)
        if (isWanted(*values))
            result.push_back(Relationship(values));
    return result;
}

std::vector<Relationship> RelationshipManager::getRelationshipsByType(const std::u16string& type) const {
    return select([&type](const Values& values) { return areSameTexts(values.type, type); });
}

std::vector<Relationship> RelationshipManager::getRelationships(
    const std::unordered_set<std::u16string, TextHash>& excludedTypes) const {
    return select([&excludedTypes](const Values& values) {
        return excludedTypes.empty() || excludedTypes.count(std::u16string(values.type)) == 0;
    });
}

Relationship RelationshipManager::addExternalRelationship(const std::u16string& id,
                                                          const std::u16string& type,
                                                          const std::u16string& target) {
    return add(id, type, target, TargetMode::External);
}

Relationship RelationshipManager::addInternalRelationship(const std::u16string& id,
                                                          const std::u16string& type, const URI& target) {
    return add(id, type, target.toString(), TargetMode::Internal);
}

RelationshipManager::SharedValues RelationshipManager::makeValues(std::u16string_view id,
                                                                  std::u16string_view type,
                                                                  std::u16string_view target,
                                                                  TargetMode targetMode) const {
    const auto made = std::make_shared<Alone>(sourceURI);
    made->texts.reserve(id.size() + type.size() + target.size());
    made->texts.append(id).append(type).append(target);
    const std::u16string_view texts = made->texts;
    made->values = {texts.substr(0, id.size()), texts.substr(id.size(), type.size()),
                    texts.substr(id.size() + type.size()), &made->sourceURI, targetMode};
    return SharedValues(made, &made->values);
}

Relationship RelationshipManager::add(std::u16string_view id, std::u16string_view type,
                                      std::u16string_view target, TargetMode targetMode) {
    unpack();
    SharedValues values = makeValues(id, type, target, targetMode);
    relationships.insert(relationships.end(), values);
    dirty = true;
    return Relationship(std::move(values));
}

Relationship RelationshipManager::setTarget(const std::u16string& id, std::u16string_view target,
                                            TargetMode targetMode) {
    unpack();
    const auto entry = relationships.find(std::u16string_view(id));
    if (entry == relationships.end())
        throwNotFound(id);
    SharedValues values = makeValues(id, (*entry)->type, target, targetMode);
    auto node = relationships.extract(entry);
    node.value() = values;
    relationships.insert(std::move(node)); // the node is there already: nothing can fail
    dirty = true;
    return Relationship(std::move(values));
}

void RelationshipManager::take(std::shared_ptr<const RelationshipGroup> read) {
    group = std::move(read);
    dirty = true;
}

void RelationshipManager::unpack() {
    if (!group)
        return;
    std::set<SharedValues, ByID> unpacked;
    for (const Values& values : group->values())
        unpacked.emplace_hint(unpacked.end(), group, &values);
    relationships.swap(unpacked);
    group.reset();
}

void RelationshipManager::deleteRelationship(const std::u16string& id) {
    unpack();
    const auto entry = relationships.find(std::u16string_view(id));
    if (entry == relationships.end())
        throwNotFound(id);
    relationships.erase(entry);
    dirty = true;
}

void RelationshipManager::read(InputStream& stream, RelationshipSerializer& serializer) {
    clear();
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
