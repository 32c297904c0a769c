#pragma once

#include "OpenSsl.hpp"

#include <optional>
#include <vector>

namespace bedrock::crypto {

struct RsaPublicNumbers {
    openssl::BnPtr modulus;
    openssl::BnPtr exponent;
};

/// Reads an RSA public key in its usual form, SubjectPublicKeyInfo (RFC 5280 section 4.1) in DER, and gives what OpenSSL
/// reads there. OpenSSL takes longer to find its decoder for a key than to digest all of a small package.
/// @return nothing for any other form, which may be a key all the same
std::optional<RsaPublicNumbers> scanRsaPublicKey(const std::vector<unsigned char>& der);

} // namespace bedrock::crypto
