#pragma once

#include "coverage/PackageMap.hpp"

#include <set>

namespace opc::standard_signatures {

/// Checks that signatures which are there go on to hold when relationships of signatures come or go. A signature that can't
/// be read doesn't hold anyway.
/// @param changed  relationships parts
/// @param leaving  signatures that are removed
/// @throws SigningRefused
void throwIfBroken(const std::set<const StoredPart*>& changed, const std::set<const StoredPart*>& leaving,
                   PackageContents& contents, const PackageMap& map);

} // namespace opc::standard_signatures
