#pragma once

#include "hash/TextHash.hpp"
#include "relationships/RelationshipBlock.hpp"

#include "xml/DocumentBudget.hpp"

#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace opc {
class InputStream;
class OutputStream;
} // namespace opc

namespace opc::model {

class RelationshipSerializer;

/// The relationships of one source, ordered by ID: code unit by code unit, with regard to letter case.
///
/// Relationships that were read stay together in one group, which needs little room, until the first change.
class RelationshipManager {
public:
    explicit RelationshipManager(const URI& sourceURI) : sourceURI(sourceURI) {}

    const URI& getSourceURI() const noexcept { return sourceURI; }
    bool isEmpty() const noexcept { return size() == 0; }
    std::size_t size() const noexcept { return group ? group->values().size() : relationships.size(); }
    bool hasOne() const noexcept { return size() == 1; }
    void clear() noexcept {
        group.reset();
        relationships.clear();
        unread = 0;
    }

    /// How many elements of the relationships part were ignored.
    std::size_t countUnread() const noexcept { return unread; }
    void setUnread(std::size_t count) noexcept { unread = count; }

    /// Keeps what the relationships part counts towards the limits of the package.
    void keepShare(DocumentShare value) const { share = std::move(value); }

    /// Whether the relationships part lacks changes. True at first.
    bool isDirty() const noexcept { return dirty; }
    void markAsDirty() noexcept { dirty = true; }

    bool hasRelationship(const std::u16string& id) const { return find(id) != nullptr; }

    /// @throws RelationshipNotFound
    Relationship getRelationship(const std::u16string& id) const;

    /// Calls `visitor` with the values of each relationship.
    void visit(const std::function<void(const RelationshipGroup::Values&)>& visitor) const;

    std::vector<Relationship> getRelationshipsByType(const std::u16string& type) const;
    std::vector<Relationship>
    getRelationships(const std::unordered_set<std::u16string, TextHash>& excludedTypes) const;

    /// Both keep an existing relationship with this ID, and still return the one that was asked for.
    Relationship addExternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const std::u16string& target);
    Relationship addInternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const URI& target);

    /// @return the relationship with its new target
    /// @throws RelationshipNotFound
    Relationship setTarget(const std::u16string& id, std::u16string_view target, TargetMode targetMode);

    /// Sets the relationships of a source that has none yet. The relationships of the group must be valid, sorted,
    /// and have different IDs.
    void take(std::shared_ptr<const RelationshipGroup> read);

    /// @throws RelationshipNotFound
    void deleteRelationship(const std::u16string& id);

    /// Replaces all relationships by those of a relationships part. After a failure, the relationships that were read
    /// before it stay.
    void read(InputStream& stream, RelationshipSerializer& serializer);

    /// Writes the relationships part if it has changed.
    void flush(OutputStream& stream, RelationshipSerializer& serializer);

private:
    using Values = RelationshipGroup::Values;
    using SharedValues = std::shared_ptr<const Values>;

    struct ByID {
        using is_transparent = void;
        bool operator()(const SharedValues& left, const SharedValues& right) const {
            return left->id < right->id;
        }
        bool operator()(const SharedValues& left, std::u16string_view id) const { return left->id < id; }
        bool operator()(std::u16string_view id, const SharedValues& right) const { return id < right->id; }
    };

    /// Null if there is none.
    SharedValues find(std::u16string_view id) const;

    template <typename Predicate>
    std::vector<Relationship> select(const Predicate& isWanted) const;

    Relationship add(std::u16string_view id, std::u16string_view type, std::u16string_view target,
                     TargetMode targetMode);

    SharedValues makeValues(std::u16string_view id, std::u16string_view type, std::u16string_view target,
                            TargetMode targetMode) const;

    /// Moves the relationships out of the group, so that they can be changed one by one.
    void unpack();

    mutable DocumentShare share;
    bool dirty = true;
    std::size_t unread = 0;
    URI sourceURI;
    std::shared_ptr<const RelationshipGroup> group; // if it isn't null, it holds all relationships
    std::set<SharedValues, ByID> relationships;
};

} // namespace opc::model
