#pragma once

#include "OpenSsl.hpp"

#include <string>
#include <string_view>
#include <vector>

/// @file
/// Public keys in the usual form of SubjectPublicKeyInfo (RFC 5280 section 4.1) in DER. OpenSSL needs more time to find
/// its decoder or encoder for a key than to digest a whole small package.
namespace bedrock::crypto {

struct NamedCurve {
    const char* name;
    const char* openSslName;
    std::string_view keyStart; ///< SubjectPublicKeyInfo in front of the point
    std::size_t pointSize;     ///< not compressed
};

/// The curve with this name; null if there is no such.
const NamedCurve* findCurve(const std::string& name);

/// The curve of a key; null if it has none, or one that isn't accepted.
const NamedCurve* findCurveOf(const EVP_PKEY& key);

/// @throws utils::InvalidKey  the numbers of an RSA key cost too much, or everybody can sign with them
void throwIfUnusableNumbers(int modulusBits, const BIGNUM& exponent);

/// @throws utils::InvalidKey  the point makes no key
openssl::PkeyPtr makeEcKey(const NamedCurve& curve, const unsigned char* point, std::size_t size);

/// SubjectPublicKeyInfo of these numbers.
std::vector<unsigned char> encodeRsaKey(const BIGNUM& modulus, const BIGNUM& exponent);

/// @return null for any other form than that of RSA and of the curves; it may still be a key
/// @throws utils::InvalidKey  the numbers make no key, or one that can't be used
openssl::PkeyPtr readPlainPublicKey(const std::vector<unsigned char>& der);

} // namespace bedrock::crypto
