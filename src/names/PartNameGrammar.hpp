#pragma once

#include <opc/model/PartName.hpp>

namespace opc::model {

/// Raises unless a new part may have this name: `PartName` takes the package root too, and as wide a set of characters
/// as real files need.
/// @throws InvalidPartName          the package root; or a segment with a character that is no pchar of RFC 3986
///                                  section 3.3 [M1.6]
/// @throws PartHasRelationshipName  in another letter case, it is the name of a relationships part: stores, which
///                                  don't tell the two apart, would put one in place of the other
void throwIfNoNameForNewPart(const PartName& name);

} // namespace opc::model
