#pragma once

#include <opc/model/PartName.hpp>

#include <string_view>

namespace opc::model {

/// Throws unless a new part may have this name. `PartName` itself also accepts the package root, and all characters
/// that real files need.
/// @throws InvalidPartName          the name is the package root, or a segment has a character that isn't a pchar of
///                          RFC 3986 section 3.3 [M1.6]
/// @throws PartHasRelationshipName  in another letter case, it is the name of a relationships part: stores ignore the
///                                  case, so one part would replace the other
void throwIfNoNameForNewPart(const PartName& name);

/// Whether a text is a part name of ASCII letters, digits, hyphens, underscores and dots in segments, which follow the rules
/// for dots and slashes. `PartName` takes it as it is.
bool isUsualPartName(std::string_view text);

/// Whether a part name is that of a relationships part, as `PartName::isRelationshipName` says.
bool isRelationshipsPartName(std::string_view name);

} // namespace opc::model
