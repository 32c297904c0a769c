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

/// The state that all copies of a source share. Derived classes extend it.
struct RelationshipSource::Impl {
    explicit Impl(const URI& source) : manager(source) {}

    /// Whether a relationship has this ID, including those that the part keeps without showing them.
    bool usesID(const std::u16string& id) const {
        return manager.hasRelationship(id) || (kept != nullptr && kept->hasKeptID(id));
    }

    /// Whether the part must stay when its last relationship is deleted.
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
    const interfaces::IKeptRelationships* kept = nullptr; // of the relationships part, if it keeps any
    bool keptMore = false;    // its last answer, for the time after the part was deleted
    bool hasLostKept = false; // whether a part that kept more was deleted, but not its source
    RelationshipManager manager;
    std::uint64_t nextIdNumber = 1;
};

} // namespace opc::model
