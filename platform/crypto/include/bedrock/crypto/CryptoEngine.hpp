#pragma once

#include <bedrock/crypto/interfaces/ICryptoProvider.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {

/// Makes digest engines, RSA keys, signers and verifiers.
///
/// It shares its provider; any number of threads can use it. The objects that it makes are independent of it. Keys, signers
/// and verifiers have 1024, 2048 or 4096 bits. Each operation accepts only its own size: for bytes that aren't a key of this
/// size it throws `utils::InvalidKey`.
class BEDROCK_CRYPTO_EXPORT CryptoEngine {
public:
    using Bytes = std::vector<unsigned char>;

    /// @throws utils::Exception  `provider` is null
    explicit CryptoEngine(std::shared_ptr<interfaces::ICryptoProvider> provider);

    /// @throws utils::CouldNotComputeDigest  the algorithm isn't available
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

    /// A private key from big-endian numbers; its primes are computed.
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

    /// A signer or verifier with a key of the same provider.
    /// @param padding    `getDefaultRSAPaddingModeSigning()`
    /// @param generator  `getDefaultCryptoPRNG()`
    /// @throws utils::InvalidKey  the key is null or has another size
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
