#pragma once

#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <memory>
#include <set>
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
    bool hasOne() const noexcept { return relationships.size() == 1; }
    void clear() noexcept { relationships.clear(); }

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

    /// The same for values that are known to be right.
    Relationship add(std::u16string id, std::shared_ptr<const std::u16string> type, std::u16string target,
                     TargetMode targetMode);

    /// @throws RelationshipNotFound
    void deleteRelationship(const std::u16string& id);

    /// Replaces all relationships by those of a relationships part. A failure leaves what had been read by
    /// then.
    void read(InputStream& stream, RelationshipSerializer& serializer);

    /// Writes the relationships part if there are changes.
    void flush(OutputStream& stream, RelationshipSerializer& serializer);

private:
    struct ByID {
        using is_transparent = void;
        bool operator()(const Relationship& left, const Relationship& right) const { return left < right; }
        bool operator()(const Relationship& left, const std::u16string& id) const {
            return left.values->id < id;
        }
        bool operator()(const std::u16string& id, const Relationship& right) const {
            return id < right.values->id;
        }
    };

    bool dirty = true;
    URI sourceURI;
    std::set<Relationship, ByID> relationships;
};

} // namespace opc::model
