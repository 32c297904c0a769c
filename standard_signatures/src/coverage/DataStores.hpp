#pragma once

#include "content/PackageContents.hpp"
#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// A document shows the content of a data store (custom XML) by its ID. Two stores with one ID, and content controls without the
/// ID of a store, leave programs the choice.
/// @param relationships  all of the package
std::vector<UnsignedChoice> findStoreChoices(const PackageContents& contents,
                                             const std::vector<MappedRelationship>& relationships);

} // namespace opc::standard_signatures
