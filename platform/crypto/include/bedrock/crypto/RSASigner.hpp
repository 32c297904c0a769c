#pragma once

#include <bedrock/crypto/Export.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

class DigestEngine;

/// Signs with one private key, which it shares. Use it from one thread at a time.
class BEDROCK_CRYPTO_EXPORT RSASigner {
public:
    virtual ~RSASigner();

    /// @param bytes   the bytes to sign, not their digest
    /// @param engine  computes the digest, and so decides the algorithm
    /// @return the signature value, with the length of the modulus; it was checked with the public half of the key
    /// @throws utils::CouldNotComputeDigest  the digest can't be computed, or `engine` is null
    /// @throws utils::Exception  the key can't sign, or its signature value is wrong
    virtual std::vector<unsigned char> sign(const std::vector<unsigned char>& bytes,
                                            const std::shared_ptr<DigestEngine>& engine) = 0;

protected:
    RSASigner() = default;
    RSASigner(const RSASigner&) = default;
    RSASigner& operator=(const RSASigner&) = default;
};

} // namespace bedrock::crypto
