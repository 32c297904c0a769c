#pragma once

#include "signatures/digests/SignedRelationships.hpp"

#include <opc/model/RelationshipSource.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace opc::model {

/// Selects relationships of a package for any number of signatures, as long as the package doesn't change. The time is
/// linear in the number of relationships and selectors, however often and in whatever order the sources are named.
///
/// The relationship to the countersignature is never selected, because it is created after the others are signed.
class SelectableRelationships {
public:
    using Group = SignedRelationships::Group;

    /// @param origin  the name of the origin part, if there is one
    explicit SelectableRelationships(std::optional<URI> origin) : origin(std::move(origin)) {}
    SelectableRelationships(const SelectableRelationships&) = delete;
    SelectableRelationships& operator=(const SelectableRelationships&) = delete;

    /// @param name  the name of the source, always in the same spelling
    /// @throws RelationshipNotFound
    Group byID(const RelationshipSource& source, const std::u16string& name, const std::u16string& id);

    /// All of a type, in the order of `RelationshipSource::getRelationshipsByType`.
    /// @param name  the name of the source, always in the same spelling
    /// @return null if there are none
    Group byType(const RelationshipSource& source, const std::u16string& name, const std::u16string& type);

    /// What a signature selects. Signatures with the same selection share it.
    std::shared_ptr<const SignedRelationships> share(SignedRelationships selected);

private:
    // Maps are trees: no choice of texts makes them slow.
    using Groups = std::map<std::u16string, Group>;

    struct Source {
        Groups byID, byType;
        bool isGathered = false; // by type, after the first few types
    };

    Source& find(const std::u16string& name);
    void gather(const RelationshipSource& source, Source& known) const;
    template <typename Relationships>
    Group makeGroup(const Relationships& relationships) const;

    std::optional<URI> origin;
    std::map<std::vector<const SelectedGroup*>, std::shared_ptr<const SignedRelationships>> shared;
    std::map<std::u16string, Source> sources;
    std::map<std::u16string, Source>::iterator recent =
        sources.end(); // the next source is mostly this one or a later one
};

} // namespace opc::model
