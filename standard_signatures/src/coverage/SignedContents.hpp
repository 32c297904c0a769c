#pragma once

#include "coverage/PackageMap.hpp"

#include <opc/standard_signatures/Coverage.hpp>

#include <unordered_set>
#include <vector>

namespace opc::standard_signatures {

/// What a signature signs that is unchanged.
struct SignedContents {
    std::unordered_set<const StoredPart*> parts;                 ///< by their octets
    std::unordered_set<const StoredPart*> contentTypes;          ///< of these parts
    std::unordered_set<const RelationshipValues*> relationships; ///< of those parts that aren't in `parts`

    std::vector<const StoredPart*> renamed; ///< parts of which the signature writes the name in another way

    const StoredPart* withUnsignedObject =
        nullptr; ///< the part of the signature, if it has content that it doesn't sign

    bool isNothing() const { return parts.empty() && relationships.empty(); }

    bool has(const MappedRelationship& one) const {
        return parts.count(one.document) != 0 || relationships.count(one.values) != 0;
    }
};

/// Compares what a signature signs with what the package has.
/// @param room  for how much more the answers can list; becomes less
CoverageAnswer computeCoverage(const SignedContents& contents, PackageContents& package,
                               const PackageMap& map, std::size_t& room);

} // namespace opc::standard_signatures
