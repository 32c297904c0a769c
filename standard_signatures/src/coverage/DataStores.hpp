#pragma once

#include "content/PackageContents.hpp"
#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// The parts that describe a data store (custom XML) with the ID of another one. A document shows the content of a store by its
/// ID, and programs take one of two stores by the order of relationships, which nothing signs.
/// @param relationships  all of the package
std::vector<const StoredPart*> findRepeatedStores(const PackageContents& contents,
                                                  const std::vector<MappedRelationship>& relationships);

} // namespace opc::standard_signatures
