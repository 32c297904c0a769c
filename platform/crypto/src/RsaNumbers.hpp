#pragma once

#include "OpenSsl.hpp"

namespace bedrock::crypto {

/// Whether the numbers of a private key belong together (RFC 8017 section 3.2), for two primes or more: the modulus
/// is their product, the private exponents are inverse to the public one, and the coefficients to the earlier primes.
/// Doesn't check whether the primes are prime, because that would take a thousand times as long: each signature value
/// is checked instead.
/// @return false also if one of the numbers is missing
bool belongTogether(const EVP_PKEY& key);

} // namespace bedrock::crypto
