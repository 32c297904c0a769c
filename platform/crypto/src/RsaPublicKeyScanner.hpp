#pragma once

#include "OpenSsl.hpp"

#include <optional>
#include <vector>

namespace bedrock::crypto {

struct RsaPublicNumbers {
    openssl::BnPtr modulus;
    openssl::BnPtr exponent;
};

/// Reads an RSA public key in its usual form, SubjectPublicKeyInfo (RFC 5280 section 4.1) in DER, with the same
/// result as OpenSSL. OpenSSL needs more time to find its decoder for a key than to digest a whole small package.
/// @return nothing for any other form; it may still be a key
std::optional<RsaPublicNumbers> scanRsaPublicKey(const std::vector<unsigned char>& der);

} // namespace bedrock::crypto
