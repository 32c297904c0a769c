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

/// What carries out the algorithms behind a `CryptoEngine`. Key sizes are in bits.
///
/// Signers and verifiers take keys of the same provider only. Any number of threads may use one provider.
class BEDROCK_CRYPTO_EXPORT ICryptoProvider {
public:
    using Bytes = std::vector<unsigned char>;

    virtual ~ICryptoProvider();

    /// @throws utils::CouldNotComputeDigest  if the algorithm isn't there
    virtual std::shared_ptr<DigestEngine> createDigestEngine(DigestAlgorithm algorithm) = 0;

    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& encoded) = 0;
    /// Numbers are big-endian; leading zeros don't count. The primes are recovered from the three numbers.
    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& modulus,
                                                               const Bytes& privateExponent,
                                                               const Bytes& publicExponent) = 0;

    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& encoded) = 0;
    /// Numbers are big-endian; leading zeros don't count.
    /// @throws utils::InvalidKey
    virtual std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& modulus,
                                                             const Bytes& exponent) = 0;

    /// @throws utils::InvalidKey  if the key is missing, of another size or of another provider
    virtual std::shared_ptr<RSASigner> createRSASigner(std::size_t bits,
                                                       const std::shared_ptr<RSAPrivateKey>& key,
                                                       RSAPaddingMode padding,
                                                       const std::shared_ptr<CryptoPRNG>& generator) = 0;

    /// @throws utils::InvalidKey  if the key is missing, of another size or of another provider
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
