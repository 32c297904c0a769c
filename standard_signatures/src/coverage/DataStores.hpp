#pragma once

#include "content/PackageContents.hpp"
#include "coverage/DataBindings.hpp"
#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// A document shows the content of a data store (custom XML) by its ID. Two stores with one ID, and content controls without the
/// ID of a store, leave programs the choice.
struct StoresOfPackage {
    std::vector<UnsignedChoice> twins;
    std::vector<DataStore> all; ///< that content controls can choose from; empty if there is only one
};

/// @param relationships  all of the package
StoresOfPackage findStores(const PackageContents& contents,
                           const std::vector<MappedRelationship>& relationships);

} // namespace opc::standard_signatures
