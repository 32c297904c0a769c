#pragma once

#include "coverage/PackageMap.hpp"

#include <opc/standard_signatures/Signing.hpp>

#include <string>

namespace opc::standard_signatures {

/// Adds a signature to a package: a part, the relationship to it, and an origin if there is none yet.
/// @return the name of its part
/// @throws SigningRefused  another signature wouldn't hold any more
/// @throws as `sign`
std::string addSignature(model::Package& package, const std::string& document, PackageContents& contents,
                         const PackageMap& map);

} // namespace opc::standard_signatures
