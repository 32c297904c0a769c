#pragma once

#include "OpenSsl.hpp"

namespace bedrock::crypto {

/// Whether the numbers of a private key belong together (RFC 8017 section 3.2), for two primes and for more:
/// the modulus is their product, the private exponents are inverse to the public one, and the coefficients to
/// the primes before. Whether primes are prime isn't looked at, which would take a thousand times as long:
/// what comes of them in signing is checked there.
/// @return false, too, if one of the numbers isn't there
bool belongTogether(const EVP_PKEY& key);

} // namespace bedrock::crypto
