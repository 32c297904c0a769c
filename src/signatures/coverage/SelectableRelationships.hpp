#pragma once

#include "signatures/digests/SignedRelationships.hpp"

#include <opc/model/RelationshipSource.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
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

    /// @throws RelationshipNotFound
    Group byID(const RelationshipSource& source, const std::u16string& id);

    /// All of a type, in the order of `RelationshipSource::getRelationshipsByType`.
    /// @return null if there are none
    Group byType(const RelationshipSource& source, const std::u16string& type);

    /// What a signature selects, in that order. Signatures with the same selection share it.
    std::shared_ptr<const SignedRelationships> share(std::vector<Group> selected);

private:
    struct OfType {
        std::u16string_view type;
        Group group;
    };

    // The texts are those of the package's relationships. No choice of texts makes a tree or a sorted list slow.
    struct Source {
        std::map<std::u16string_view, Group> byID;
        std::vector<OfType> byType; // sorted
        std::size_t walks = 0;      // over all relationships, for one type each
        bool isGathered = false;    // whether `byType` has all types
    };

    struct BySelections {
        template <typename Selected>
        bool operator()(const Selected& left, const Selected& right) const {
            return left->selections() < right->selections();
        }
    };

    Source& find(const RelationshipSource& source);
    static std::vector<OfType>::iterator findPlace(Source& known, std::u16string_view type);
    void gather(const RelationshipSource& source, Source& known) const;
    template <typename Relationships>
    Group makeGroup(const Relationships& relationships) const;

    std::optional<URI> origin;
    std::set<std::shared_ptr<const SignedRelationships>, BySelections> shared;
    std::map<const void*, Source> sources; // by the state that all handles of a source share
    std::map<const void*, Source>::iterator recent =
        sources.end(); // the next source is mostly this one or a later one
};

} // namespace opc::model
