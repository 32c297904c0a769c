#pragma once

#include <bedrock/crypto/CryptoPRNG.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/RSAPaddingMode.hpp>
#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>
#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/RSAVerifier.hpp>

#include <cstddef>
#include <memory>
#include <vector>

namespace bedrock::crypto::interfaces {

/// Implements the algorithms of a `CryptoEngine`. Key sizes are in bits.
///
/// Signers and verifiers accept only keys of the same provider. Any number of threads can use a provider.
class BEDROCK_CRYPTO_EXPORT ICryptoProvider {
public:
    using Bytes = std::vector<unsigned char>;

    virtual ~ICryptoProvider();

    /// @throws utils::CouldNotComputeDigest  the algorithm isn't available
    virtual std::shared_ptr<DigestEngine> createDigestEngine(DigestAlgorithm algorithm) = 0;

    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& encoded) = 0;
    /// Numbers are big-endian; leading zeros are ignored. The primes are computed from the three numbers.
    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& modulus,
                                                               const Bytes& privateExponent,
                                                               const Bytes& publicExponent) = 0;

    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& encoded) = 0;
    /// Numbers are big-endian; leading zeros are ignored.
    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& modulus,
                                                             const Bytes& exponent) = 0;

    /// @throws utils::InvalidKey  the key is null, has another size, or comes from another provider
    virtual std::shared_ptr<RSASigner> createRSASigner(std::size_t bits,
                                                       const std::shared_ptr<RSAPrivateKey>& key,
                                                       RSAPaddingMode padding,
                                                       const std::shared_ptr<CryptoPRNG>& generator) = 0;

    /// @throws utils::InvalidKey  the key is null, has another size, or comes from another provider
    virtual std::shared_ptr<RSAVerifier> createRSAVerifier(std::size_t bits,
                                                           const std::shared_ptr<RSAPublicKey>& key,
                                                           RSAPaddingMode padding,
                                                           const std::shared_ptr<CryptoPRNG>& generator) = 0;

    virtual RSAPaddingMode getDefaultRSAPaddingModeSigning() const = 0;
    virtual std::shared_ptr<CryptoPRNG> getDefaultCryptoPRNG() const = 0;

protected:
    ICryptoProvider() = default;
    ICryptoProvider(const ICryptoProvider&) = default;
    ICryptoProvider& operator=(const ICryptoProvider&) = default;
};

} // namespace bedrock::crypto::interfaces
