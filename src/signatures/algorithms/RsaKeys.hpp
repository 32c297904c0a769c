#pragma once

#include <opc/model/SignatureParams.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace bedrock::crypto {
class CryptoEngine;
class RSAPublicKey;
class RSASigner;
class RSAVerifier;
} // namespace bedrock::crypto

/// @file
/// RSA keys by their size in bits: only this file chooses between the operations for 1024, 2048 and 4096 bits. All
/// throw what `bedrock::crypto` throws, and return null for another size.

namespace opc::model {

using Bytes = std::vector<unsigned char>;

/// The size of a method's key; 0 if it has none.
std::uint64_t rsaKeySize(SignatureMethod method);

std::shared_ptr<bedrock::crypto::RSAPublicKey> createRsaPublicKey(const bedrock::crypto::CryptoEngine& engine,
                                                                  std::uint64_t bits, const Bytes& publicKey);

std::shared_ptr<bedrock::crypto::RSASigner> createRsaSigner(const bedrock::crypto::CryptoEngine& engine,
                                                            std::uint64_t bits, const Bytes& privateKey);

std::shared_ptr<bedrock::crypto::RSAVerifier> createRsaVerifier(const bedrock::crypto::CryptoEngine& engine,
                                                                std::uint64_t bits, const Bytes& publicKey);

/// The encoded form of the key with these numbers; empty for another size.
Bytes encodeRsaPublicKey(const bedrock::crypto::CryptoEngine& engine, std::uint64_t bits,
                         const Bytes& modulus, const Bytes& exponent);

/// The encoded form of the key with these numbers; empty for another size.
Bytes encodeRsaPrivateKey(const bedrock::crypto::CryptoEngine& engine, std::uint64_t bits,
                          const Bytes& modulus, const Bytes& privateExponent, const Bytes& publicExponent);

} // namespace opc::model
