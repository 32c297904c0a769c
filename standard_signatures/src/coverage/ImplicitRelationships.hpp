#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// What a source has once, if programs find the target of such a relationship by its type alone: they take one of several by their
/// order, which the relationships transform doesn't keep (ECMA-376 Part 1, implicit relationships). The types of a kind are those
/// of the editions of the standard.
/// @param sourceType  the content type of the source; "/" for the package
/// @return the kind; empty if a source can have several
std::string implicitKindOf(std::string_view type, std::string_view sourceType);

} // namespace opc::standard_signatures
