#pragma once

#include <opc/standard_signatures/Export.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// Which signatures protect each part and each relationship of a package.
struct CoverageTable {
    /// Why something needn't be signed.
    enum class Standing {
        Content,         ///< it must be signed
        LeftOutByCustom, ///< signing programs leave it out
        OfSignatures,    ///< it belongs to the signatures
    };

    struct Row {
        std::string place; ///< the part, or the source of the relationship ("/" for the package)
        std::string id;    ///< of a relationship
        std::string type;  ///< of a relationship
        Standing standing;
        std::vector<std::size_t> signatures; ///< those that protect it, by their places in the list
    };

    PackageVerification verification; ///< of the same signatures; a broken one protects nothing
    std::vector<Row> parts;           ///< without relationships parts
    std::vector<Row> relationships;
};

/// @param store, policy  as for `verify`
/// @throws as `verify`
OPC_STANDARD_SIGNATURES_EXPORT CoverageTable tabulateCoverage(interfaces::IPhysicalPackage& store,
                                                              const VerificationPolicy& policy = {});

} // namespace opc::standard_signatures
