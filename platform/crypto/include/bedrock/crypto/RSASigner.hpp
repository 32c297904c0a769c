#pragma once

#include <bedrock/crypto/Export.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

class DigestEngine;

/// Signs with one private key, which it shares. It serves one thread at a time.
class BEDROCK_CRYPTO_EXPORT RSASigner {
public:
    virtual ~RSASigner();

    /// @param bytes   what is signed: the signer has it digested
    /// @param engine  computes the digest, and thereby chooses its algorithm
    /// @return the signature value, as long as the modulus; it has been checked by the key's public half
    /// @throws utils::CouldNotComputeDigest  also if there is no engine
    /// @throws utils::Exception  if the key can't sign, or what it signs doesn't hold
    virtual std::vector<unsigned char> sign(const std::vector<unsigned char>& bytes,
                                            const std::shared_ptr<DigestEngine>& engine) = 0;

protected:
    RSASigner() = default;
    RSASigner(const RSASigner&) = default;
    RSASigner& operator=(const RSASigner&) = default;
};

} // namespace bedrock::crypto
