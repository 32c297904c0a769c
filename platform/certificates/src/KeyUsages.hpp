#pragma once

#include "OpenSsl.hpp"

#include <string>

namespace bedrock::certificates::detail {

/// Why the first certificate of a chain can't sign documents.
struct UsageObjection {
    int depth = 0;      ///< of the certificate at fault
    std::string reason; ///< empty if it can sign
};

/// Checks the kind of the signer's key, its key usage, and the extended key usages of the whole chain.
/// @param allowsOtherKeys  whether the signer may have another key than one for RSA with PKCS#1 padding
UsageObjection findUsageObjection(STACK_OF(X509) * chain, bool allowsOtherKeys);

} // namespace bedrock::certificates::detail
