#pragma once

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

/// The relationships of one source, in the order of their IDs: code unit by code unit, letter case counting.
///
/// They stay together as they were read, which takes little room, until the first change.
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

    /// How many elements of the relationships part aren't among these relationships.
    std::size_t countUnread() const noexcept { return unread; }
    void setUnread(std::size_t count) noexcept { unread = count; }

    /// What the relationships part takes of the limits of the package.
    void keepShare(DocumentShare value) const { share = std::move(value); }

    /// Whether there are changes that the relationships part doesn't hold. True at first.
    bool isDirty() const noexcept { return dirty; }
    void markAsDirty() noexcept { dirty = true; }

    bool hasRelationship(const std::u16string& id) const { return find(id) != nullptr; }

    /// @throws RelationshipNotFound
    Relationship getRelationship(const std::u16string& id) const;

    /// Calls `visitor` with the values of each relationship.
    void visit(const std::function<void(const RelationshipGroup::Values&)>& visitor) const;

    std::vector<Relationship> getRelationshipsByType(const std::u16string& type) const;
    std::vector<Relationship> getRelationships(const std::unordered_set<std::u16string>& excludedTypes) const;

    /// Both keep an older relationship of the same ID, and give the one that was asked for all the same.
    Relationship addExternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const std::u16string& target);
    Relationship addInternalRelationship(const std::u16string& id, const std::u16string& type,
                                         const URI& target);

    /// For a source that has no relationships yet: takes a group, whose relationships are known to be right,
    /// stand in order and differ in their IDs.
    void take(std::shared_ptr<const RelationshipGroup> read);

    /// @throws RelationshipNotFound
    void deleteRelationship(const std::u16string& id);

    /// Replaces all relationships by those of a relationships part. A failure leaves what had been read by
    /// then.
    void read(InputStream& stream, RelationshipSerializer& serializer);

    /// Writes the relationships part if there are changes.
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

    /// Takes the relationships out of the group, so that they can be changed one by one.
    void unpack();

    mutable DocumentShare share;
    bool dirty = true;
    std::size_t unread = 0;
    URI sourceURI;
    std::shared_ptr<const RelationshipGroup> group; // if it isn't null, it has all relationships
    std::set<SharedValues, ByID> relationships;
};

} // namespace opc::model
