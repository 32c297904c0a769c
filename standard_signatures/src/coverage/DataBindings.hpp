#pragma once

#include "content/PackageContents.hpp"

#include <set>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// The parts with a content control (`w:dataBinding`) that names no store, or one that isn't there: programs show the first
/// store that has what the control looks for. A text that can't be read to its end is among them.
/// @param storeIDs  of the stores of the package, as `keyOf` gives them
std::vector<const StoredPart*> findLooseBindings(const PackageContents& contents,
                                                 const std::set<std::string>& storeIDs);

} // namespace opc::standard_signatures
