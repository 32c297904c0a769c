#pragma once

#include "OpenSsl.hpp"

#include <cstddef>
#include <vector>

/// @file
/// Makes RSA keys from bytes and numbers, checks them, and encodes them. Sizes are in bits. Every operation that
/// makes a key throws utils::InvalidKey, before any costly work, if the key isn't an RSA key of that size.

namespace bedrock::crypto {

/// A complete private key from PKCS#8 or PKCS#1, in DER or PEM.
openssl::PkeyPtr decodePrivateKey(std::size_t bits, const std::vector<unsigned char>& encoded);

/// A complete private key from its numbers.
openssl::PkeyPtr composePrivateKey(std::size_t bits, const std::vector<unsigned char>& modulus,
                                   const std::vector<unsigned char>& privateExponent,
                                   const std::vector<unsigned char>& publicExponent);

/// A public key from SubjectPublicKeyInfo or PKCS#1, in DER or PEM.
openssl::PkeyPtr decodePublicKey(std::size_t bits, const std::vector<unsigned char>& encoded);

/// A public key from its numbers.
openssl::PkeyPtr composePublicKey(std::size_t bits, const std::vector<unsigned char>& modulus,
                                  const std::vector<unsigned char>& exponent);

/// PKCS#8 in DER.
std::vector<unsigned char> encodePrivateKey(const EVP_PKEY& key);

/// SubjectPublicKeyInfo in DER.
std::vector<unsigned char> encodePublicKey(const EVP_PKEY& key);

} // namespace bedrock::crypto
