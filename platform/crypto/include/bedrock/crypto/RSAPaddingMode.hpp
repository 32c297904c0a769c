#pragma once

namespace bedrock::crypto {

/// How a digest is padded to a signature value of RSA.
enum class RSAPaddingMode {
    PKCS1v15, ///< EMSA-PKCS1-v1_5 of RFC 8017 section 9.2
};

} // namespace bedrock::crypto
