#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/TargetMode.hpp>
#include <opc/model/URI.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace opc::model {

class RelationshipGroup;
class RelationshipManager;
class RelationshipsText;
class SelectableRelationships;
class SignedRelationships;

/// One relationship of a package or a part (ECMA-376 Part 2, relationships), as it was when it was returned.
///
/// A small value type without a link to its package: it stays readable when the relationship is deleted or the package is
/// closed. `getTargetURI` caches its result, so use one object from one thread at a time; different threads can use
/// different copies.
class OPC_MODEL_EXPORT Relationship {
public:
    /// Unique among the relationships of one source. Letter case matters.
    std::u16string getID() const { return std::u16string(values->id); }

    /// A URI that says what the relationship means.
    std::u16string getType() const { return std::u16string(values->type); }

    /// The URI of the source: a part name, or "/" for the package.
    URI getSourceURI() const { return *values->sourceURI; }

    /// The target exactly as it is in the relationships part, usually relative to the source.
    std::u16string getTarget() const { return std::u16string(values->target); }

    TargetMode getTargetMode() const { return values->targetMode; }

    /// The target as a URI. An internal target is resolved against the source, which gives a part name. In an external
    /// target backslashes become slashes, and characters outside ASCII are percent-encoded.
    /// @throws InvalidURI          an external target can't be converted; `getTarget` still gives its text
    /// @throws UnsupportedResolve  an internal target is opaque. A package that was read has no such target
    URI getTargetURI() const;

    /// Compares the results of `getID` to `getTargetMode`, and also the cached target URI. So a relationship differs from
    /// its own copy if `getTargetURI` has resolved a relative target in only one of the two.
    bool operator==(const Relationship& other) const;
    bool operator!=(const Relationship& other) const { return !(*this == other); }

    /// Compares the IDs, code unit by code unit. A source keeps and writes its relationships in this order.
    bool operator<(const Relationship& other) const { return values->id < other.values->id; }

private:
    friend class RelationshipGroup;
    friend class RelationshipManager;
    friend class RelationshipsText;
    friend class SelectableRelationships;
    friend class SignedRelationships;

    /// The values, which never change. All copies share them. A block, which they keep alive, holds texts and source.
    struct Values {
        std::u16string_view id;
        std::u16string_view type;
        std::u16string_view target;
        const URI* sourceURI;
        TargetMode targetMode;
    };

    explicit Relationship(std::shared_ptr<const Values> values) : values(std::move(values)) {}

    /// Whether it comes from the same relationship of the same source, in the same state.
    bool isCopyOf(const Relationship& other) const { return values == other.values; }

    URI resolveTarget() const;

    /// The target URI before it is resolved: an internal target as it is in the document.
    URI unresolvedTargetURI() const;

    std::shared_ptr<const Values> values;
    mutable std::shared_ptr<const URI> targetURI; // null until it is resolved
};

} // namespace opc::model
