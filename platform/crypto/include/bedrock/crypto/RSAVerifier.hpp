#pragma once

#include <bedrock/crypto/Export.hpp>
#include <bedrock/crypto/utils/SignatureVerificationStatus.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

class DigestEngine;

/// Checks signature values with one public key, which it shares. It serves one thread at a time.
class BEDROCK_CRYPTO_EXPORT RSAVerifier {
public:
    virtual ~RSAVerifier();

    /// @param bytes           what was signed: the verifier has it digested
    /// @param signatureValue  any bytes; what can't be a signature value is a status, no failure
    /// @param engine          computes the digest, and thereby chooses its algorithm
    /// @throws utils::CouldNotComputeDigest  also if there is no engine
    virtual utils::SignatureVerificationStatus verify(const std::vector<unsigned char>& bytes,
                                                      const std::vector<unsigned char>& signatureValue,
                                                      const std::shared_ptr<DigestEngine>& engine) = 0;

protected:
    RSAVerifier() = default;
    RSAVerifier(const RSAVerifier&) = default;
    RSAVerifier& operator=(const RSAVerifier&) = default;
};

} // namespace bedrock::crypto
