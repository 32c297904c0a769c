#pragma once

#include "content/PackageContents.hpp"
#include "crypto/Methods.hpp"
#include "signing/SigningPlan.hpp"

#include <string>

namespace opc::standard_signatures {

/// The element Manifest over what is planned, with the digests of what lies in the store.
/// @throws SigningRefused  a part can't be read
std::string composeManifest(const SigningPlan& plan, PackageContents& contents, const DigestMethod& method);

} // namespace opc::standard_signatures
