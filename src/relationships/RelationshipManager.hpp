#pragma once

#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

namespace opc {
class InputStream;
class OutputStream;
} // namespace opc

namespace opc::model {

class RelationshipSerializer;

/// The relationships of one source, in the order of their IDs: code unit by code unit, letter case counting.
class RelationshipManager {
public:
    explicit RelationshipManager(const URI& source) : sourceURI(source) {}

    bool isEmpty() const noexcept { return relationships.empty(); }

    /// Whether there are changes that the relationships part doesn't hold. True at first.
    bool isDirty() const noexcept { return dirty; }
    void markAsDirty() noexcept { dirty = true; }

    bool hasRelationship(const std::u16string& id) const { return relationships.count(id) != 0; }

    /// @throws RelationshipNotFound
    Relationship getRelationship(const std::u16string& id) const;

    std::vector<Relationship> getRelationshipsByType(const std::u16string& type) const;
    std::vector<Relationship> getRelationships(const std::unordered_set<std::u16string>& excludedTypes) const;

    /// Both keep an older relationship of the same ID, and give the one that was asked for all the same.
    Relationship addExternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const std::u16string& target);
    Relationship addInternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const URI& target);

    /// @throws RelationshipNotFound
    void deleteRelationship(const std::u16string& id);

    /// Replaces all relationships by those of a relationships part. A failure leaves what had been read by
    /// then.
    void read(InputStream& stream, RelationshipSerializer& serializer);

    /// Writes the relationships part if there are changes.
    void flush(OutputStream& stream, RelationshipSerializer& serializer);

private:
    Relationship add(Relationship relationship);

    bool dirty = true;
    URI sourceURI;
    std::map<std::u16string, Relationship> relationships;
};

} // namespace opc::model
