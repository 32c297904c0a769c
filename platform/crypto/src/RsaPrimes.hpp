#pragma once

#include "OpenSsl.hpp"

namespace bedrock::crypto {

/// A complete RSA private key of these numbers: the primes are recovered from the exponents (NIST SP 800-56B
/// rev. 2, appendix C.1), and from them the exponents and the coefficient of the Chinese remainder theorem.
/// @param modulus, publicExponent  odd and above 1
/// @param privateExponent          between 1 and the modulus
/// @return null if the exponents don't belong together for this modulus
openssl::PkeyPtr makePrivateKey(const BIGNUM& modulus, const BIGNUM& publicExponent,
                                const BIGNUM& privateExponent);

} // namespace bedrock::crypto
