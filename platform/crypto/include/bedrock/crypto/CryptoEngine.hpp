#pragma once

#include <bedrock/crypto/interfaces/ICryptoProvider.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

/// Makes digest engines, RSA keys, signers and verifiers, by name.
///
/// A handle on a provider that it shares; any number of threads may use one. What it makes lives on its own.
/// Keys, signers and verifiers exist for 1024, 2048 and 4096 bits, and each operation takes its own size
/// alone: bytes of a key of another size, or of no key, raise `utils::InvalidKey`.
class BEDROCK_CRYPTO_EXPORT CryptoEngine {
public:
    using Bytes = std::vector<unsigned char>;

    /// @throws utils::Exception  if `provider` is null
    explicit CryptoEngine(std::shared_ptr<interfaces::ICryptoProvider> provider);

    /// @throws utils::CouldNotComputeDigest  if the algorithm isn't there
    /// @{
    std::shared_ptr<DigestEngine> createMD5DigestEngine() const;
    std::shared_ptr<DigestEngine> createSHA1DigestEngine() const;
    std::shared_ptr<DigestEngine> createSHA224DigestEngine() const;
    std::shared_ptr<DigestEngine> createSHA256DigestEngine() const;
    std::shared_ptr<DigestEngine> createSHA384DigestEngine() const;
    std::shared_ptr<DigestEngine> createSHA512DigestEngine() const;
    /// @}

    /// A private key from its encoded form.
    /// @throws utils::InvalidKey
    /// @{
    std::shared_ptr<RSAPrivateKey> createRSA1024PrivateKey(const Bytes& encoded) const;
    std::shared_ptr<RSAPrivateKey> createRSA2048PrivateKey(const Bytes& encoded) const;
    std::shared_ptr<RSAPrivateKey> createRSA4096PrivateKey(const Bytes& encoded) const;
    /// @}

    /// A private key from big-endian numbers; its primes are recovered.
    /// @throws utils::InvalidKey
    /// @{
    std::shared_ptr<RSAPrivateKey> createRSA1024PrivateKey(const Bytes& modulus, const Bytes& privateExponent,
                                                           const Bytes& publicExponent) const;
    std::shared_ptr<RSAPrivateKey> createRSA2048PrivateKey(const Bytes& modulus, const Bytes& privateExponent,
                                                           const Bytes& publicExponent) const;
    std::shared_ptr<RSAPrivateKey> createRSA4096PrivateKey(const Bytes& modulus, const Bytes& privateExponent,
                                                           const Bytes& publicExponent) const;
    /// @}

    /// A public key from its encoded form, or from big-endian numbers.
    /// @throws utils::InvalidKey
    /// @{
    std::shared_ptr<RSAPublicKey> createRSA1024PublicKey(const Bytes& encoded) const;
    std::shared_ptr<RSAPublicKey> createRSA2048PublicKey(const Bytes& encoded) const;
    std::shared_ptr<RSAPublicKey> createRSA4096PublicKey(const Bytes& encoded) const;
    std::shared_ptr<RSAPublicKey> createRSA1024PublicKey(const Bytes& modulus, const Bytes& exponent) const;
    std::shared_ptr<RSAPublicKey> createRSA2048PublicKey(const Bytes& modulus, const Bytes& exponent) const;
    std::shared_ptr<RSAPublicKey> createRSA4096PublicKey(const Bytes& modulus, const Bytes& exponent) const;
    /// @}

    /// A signer or verifier with a key that this engine's provider made.
    /// @param padding    `getDefaultRSAPaddingModeSigning()`
    /// @param generator  `getDefaultCryptoPRNG()`
    /// @throws utils::InvalidKey  if the key is null or of another size
    /// @{
    std::shared_ptr<RSASigner> createRSA1024Signer(const std::shared_ptr<RSAPrivateKey>& key,
                                                   RSAPaddingMode padding,
                                                   const std::shared_ptr<CryptoPRNG>& generator) const;
    std::shared_ptr<RSASigner> createRSA2048Signer(const std::shared_ptr<RSAPrivateKey>& key,
                                                   RSAPaddingMode padding,
                                                   const std::shared_ptr<CryptoPRNG>& generator) const;
    std::shared_ptr<RSASigner> createRSA4096Signer(const std::shared_ptr<RSAPrivateKey>& key,
                                                   RSAPaddingMode padding,
                                                   const std::shared_ptr<CryptoPRNG>& generator) const;
    std::shared_ptr<RSAVerifier> createRSA1024Verifier(const std::shared_ptr<RSAPublicKey>& key,
                                                       RSAPaddingMode padding,
                                                       const std::shared_ptr<CryptoPRNG>& generator) const;
    std::shared_ptr<RSAVerifier> createRSA2048Verifier(const std::shared_ptr<RSAPublicKey>& key,
                                                       RSAPaddingMode padding,
                                                       const std::shared_ptr<CryptoPRNG>& generator) const;
    std::shared_ptr<RSAVerifier> createRSA4096Verifier(const std::shared_ptr<RSAPublicKey>& key,
                                                       RSAPaddingMode padding,
                                                       const std::shared_ptr<CryptoPRNG>& generator) const;
    /// @}

    RSAPaddingMode getDefaultRSAPaddingModeSigning() const {
        return provider->getDefaultRSAPaddingModeSigning();
    }
    std::shared_ptr<CryptoPRNG> getDefaultCryptoPRNG() const { return provider->getDefaultCryptoPRNG(); }

private:
    std::shared_ptr<interfaces::ICryptoProvider> provider;
};

} // namespace bedrock::crypto
