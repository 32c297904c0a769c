#pragma once

#include "OpenSsl.hpp"

#include <string>

namespace bedrock::certificates::detail {

/// What speaks against signing documents with the first certificate of a chain.
struct UsageObjection {
    int depth = 0;      ///< of the certificate at fault
    std::string reason; ///< empty if nothing speaks against it
};

/// Looks at the kind of the signer's key, at its key usage, and at the extended key usages of the whole chain.
UsageObjection findUsageObjection(STACK_OF(X509) * chain);

} // namespace bedrock::certificates::detail
