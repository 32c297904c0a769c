#pragma once

#include <bedrock/crypto/Export.hpp>
#include <bedrock/crypto/utils/SignatureVerificationStatus.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

class DigestEngine;

/// Checks signature values with one public key, which it shares. Use it from one thread at a time.
class BEDROCK_CRYPTO_EXPORT RSAVerifier {
public:
    virtual ~RSAVerifier();

    /// @param bytes           the bytes that were signed, not their digest
    /// @param signatureValue  any bytes; if they can't be a signature value, the status says so
    /// @param engine          computes the digest, and so decides the algorithm
    /// @throws utils::CouldNotComputeDigest  the digest can't be computed, or `engine` is null
    virtual utils::SignatureVerificationStatus verify(const std::vector<unsigned char>& bytes,
                                                      const std::vector<unsigned char>& signatureValue,
                                                      const std::shared_ptr<DigestEngine>& engine) = 0;

protected:
    RSAVerifier() = default;
    RSAVerifier(const RSAVerifier&) = default;
    RSAVerifier& operator=(const RSAVerifier&) = default;
};

} // namespace bedrock::crypto
