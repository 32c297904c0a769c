#pragma once

#include <opc/model/PartName.hpp>

namespace opc::model {

/// Throws unless a new part may have this name. `PartName` itself also accepts the package root, and all characters
/// that real files need.
/// @throws InvalidPartName          the name is the package root, or a segment has a character that isn't a pchar of
///                          RFC 3986 section 3.3 [M1.6]
/// @throws PartHasRelationshipName  in another letter case, it is the name of a relationships part: stores ignore the
///                                  case, so one part would replace the other
void throwIfNoNameForNewPart(const PartName& name);

} // namespace opc::model
