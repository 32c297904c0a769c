#pragma once

#include "coverage/SignedContents.hpp"

#include <opc/standard_signatures/Signing.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace opc::standard_signatures {

/// What a new signature signs.
struct SigningPlan {
    struct Relationships {
        const StoredPart* document;
        std::vector<const RelationshipValues*> selected; ///< sorted by ID
        std::vector<std::string_view> types;             ///< no further relationship may have one of these
    };

    std::vector<const StoredPart*> parts; ///< by their octets
    std::vector<Relationships> relationships;

    /// @throws SigningRefused
    static SigningPlan make(PackageContents& contents, const PackageMap& map, const SigningOptions& options);

    SignedContents signedContents() const;
};

/// Throws if other programs may take something for something else, as far as it was read.
/// @throws SigningRefused
void throwIfMisnamed(const PackageMap& map);

/// The parts that no chain of relationships reaches from the package.
std::vector<std::string> findUnreachable(const PackageContents& contents, const PackageMap& map);

/// The signed relationships that lead to parts which the package doesn't have, as `SOURCE#ID`.
std::vector<std::string> findDangling(const SignedContents& contents, const PackageMap& map);

} // namespace opc::standard_signatures
