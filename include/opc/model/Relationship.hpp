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
class SignedRelationships;

/// One relationship of a package or a part, as it was when it was asked for (ECMA-376 Part 2, relationships).
///
/// A small value, cheap to copy, without a link to its package: it stays readable when the relationship is
/// deleted or the package closed. `getTargetURI` keeps what it has worked out, so one object must not be used
/// by two threads at once; copies may.
class OPC_MODEL_EXPORT Relationship {
public:
    /// Unique among the relationships of one source, letter case counting.
    std::u16string getID() const { return std::u16string(values->id); }

    /// A URI in text form that says what the relationship means.
    std::u16string getType() const { return std::u16string(values->type); }

    /// The URI of the source: a part name, or "/" for the package.
    URI getSourceURI() const { return *values->sourceURI; }

    /// The target exactly as the relationships part holds it, in most cases relative to the source.
    std::u16string getTarget() const { return std::u16string(values->target); }

    TargetMode getTargetMode() const { return values->targetMode; }

    /// The target as a URI. An internal one is resolved against the source, which gives a part name. An
    /// external one is put in ASCII by percent-encoding, backslashes taken as slashes.
    /// @throws InvalidURI          an external target can't be converted: `getTarget` still gives its text
    /// @throws UnsupportedResolve  an internal target is opaque; can't come from a package that has been read
    URI getTargetURI() const;

    /// All that `getID` to `getTargetMode` give, and the target URI so far as it has been worked out: a
    /// relationship is unlike its own copy once `getTargetURI` has resolved a relative target in one of the
    /// two.
    bool operator==(const Relationship& other) const;
    bool operator!=(const Relationship& other) const { return !(*this == other); }

    /// By ID alone, code unit by code unit: the order in which a source keeps and writes its relationships.
    bool operator<(const Relationship& other) const { return values->id < other.values->id; }

private:
    friend class RelationshipGroup;
    friend class RelationshipManager;
    friend class RelationshipsText;
    friend class SignedRelationships;

    /// What never changes, shared by all copies. Texts and source lie in a block that the values keep.
    struct Values {
        std::u16string_view id;
        std::u16string_view type;
        std::u16string_view target;
        const URI* sourceURI;
        TargetMode targetMode;
    };

    explicit Relationship(std::shared_ptr<const Values> shared) : values(std::move(shared)) {}

    /// Whether it comes from the same relationship of the same source, in the same state.
    bool isCopyOf(const Relationship& other) const { return values == other.values; }

    URI resolveTarget() const;

    /// What the target URI is before it has been worked out: an internal target as it stands.
    URI unresolvedTargetURI() const;

    std::shared_ptr<const Values> values;
    mutable std::shared_ptr<const URI> targetURI; // null until it is worked out
};

} // namespace opc::model
