#pragma once

#include <bedrock/crypto/interfaces/ICryptoProvider.hpp>

namespace bedrock::crypto::cryptopp {

/// The provider of all algorithms, on OpenSSL. It has no state.
///
/// Private keys are read from PKCS#8 or PKCS#1, public keys from SubjectPublicKeyInfo or PKCS#1, each in DER
/// or PEM without a password. Public exponents must be odd, at least 3, and have at most 64 bits. Signing with
/// `RSAPaddingMode::PKCS1v15` doesn't use the generator of the signer; OpenSSL blinds the private operation with its own
/// random numbers.
class BEDROCK_CRYPTO_EXPORT CryptoProvider : public interfaces::ICryptoProvider {
public:
    CryptoProvider() = default;

    std::shared_ptr<DigestEngine> createDigestEngine(DigestAlgorithm algorithm) override;

    std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& encoded) override;
    std::shared_ptr<RSAPrivateKey> createRSAPrivateKey(std::size_t bits, const Bytes& modulus,
                                                       const Bytes& privateExponent,
                                                       const Bytes& publicExponent) override;

    std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& encoded) override;
    std::shared_ptr<RSAPublicKey> createRSAPublicKey(std::size_t bits, const Bytes& modulus,
                                                     const Bytes& exponent) override;

    std::shared_ptr<RSASigner> createRSASigner(std::size_t bits, const std::shared_ptr<RSAPrivateKey>& key,
                                               RSAPaddingMode padding,
                                               const std::shared_ptr<CryptoPRNG>& generator) override;
    std::shared_ptr<RSAVerifier> createRSAVerifier(std::size_t bits, const std::shared_ptr<RSAPublicKey>& key,
                                                   RSAPaddingMode padding,
                                                   const std::shared_ptr<CryptoPRNG>& generator) override;

    RSAPaddingMode getDefaultRSAPaddingModeSigning() const override { return RSAPaddingMode::PKCS1v15; }
    std::shared_ptr<CryptoPRNG> getDefaultCryptoPRNG() const override;
};

} // namespace bedrock::crypto::cryptopp
