#pragma once

#include "OpenSsl.hpp"

namespace bedrock::crypto {

/// Makes a complete RSA private key from these numbers: recovers the primes from the exponents (NIST SP 800-56B rev.
/// 2, appendix C.1), and computes the exponents and the coefficient of the Chinese remainder theorem from them.
/// @param modulus, publicExponent  odd and above 1
/// @param privateExponent          between 1 and the modulus
/// @return null if the exponents don't belong together for this modulus
openssl::PkeyPtr makePrivateKey(const BIGNUM& modulus, const BIGNUM& publicExponent,
                                const BIGNUM& privateExponent);

} // namespace bedrock::crypto
