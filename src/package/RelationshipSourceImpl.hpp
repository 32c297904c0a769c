#pragma once

#include "relationships/RelationshipManager.hpp"
#include "xml/UnreadElements.hpp"

#include <opc/interfaces/IKeptRelationships.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/RelationshipSource.hpp>
#include <opc/model/URI.hpp>

#include <cstdint>
#include <string>

namespace opc::model {

/// What all copies of a source share. A derived class adds its own to it.
struct RelationshipSource::Impl {
    explicit Impl(const URI& source) : manager(source) {}

    /// Whether a relationship has an ID, be it one that the part keeps to itself.
    bool usesID(const std::u16string& id) const {
        return manager.hasRelationship(id) || (kept != nullptr && kept->hasKeptID(id));
    }

    /// Whether the part outlives its last relationship.
    bool keepsMore() const { return keptMore; }

    /// Why the relationships can't be changed; empty if they can.
    std::string whyFixed() const {
        if (manager.countUnread() > 0)
            return describeUnread(manager.countUnread());
        if (hasLostKept)
            return "its relationships that couldn't be read have been deleted with it";
        return kept != nullptr ? kept->whyFixed() : std::string();
    }

    interfaces::IPhysicalPart* relationshipsPart = nullptr;
    const interfaces::IKeptRelationships* kept = nullptr; // of that part, if it has any
    bool keptMore = false;    // what that says, which can't be asked any more when the part has been deleted
    bool hasLostKept = false; // whether a part that kept more has been deleted, but not the source
    RelationshipManager manager;
    std::uint64_t nextIdNumber = 1;
};

} // namespace opc::model
