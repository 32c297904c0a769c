#pragma once

#include <string_view>

namespace opc::standard_signatures {

/// Whether office programs find the target of such a relationship by its type alone, and take one of several by their order, which
/// the relationships transform doesn't keep (ECMA-376 Part 1, implicit relationships).
/// @param isOfPackage  whether the package is the source
bool isImplicit(std::string_view type, bool isOfPackage);

} // namespace opc::standard_signatures
