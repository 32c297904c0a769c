#include <bedrock/crypto/CryptoEngine.hpp>

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <utility>

namespace bedrock::crypto {

using Bytes = CryptoEngine::Bytes;

CryptoEngine::CryptoEngine(std::shared_ptr<interfaces::ICryptoProvider> provider)
    : provider(std::move(provider)) {
    if (!this->provider)
        throw utils::Exception("A crypto engine needs a provider.");
}

std::shared_ptr<DigestEngine> CryptoEngine::createMD5DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::MD5);
}

std::shared_ptr<DigestEngine> CryptoEngine::createSHA1DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::SHA1);
}

std::shared_ptr<DigestEngine> CryptoEngine::createSHA224DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::SHA224);
}

std::shared_ptr<DigestEngine> CryptoEngine::createSHA256DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::SHA256);
}

std::shared_ptr<DigestEngine> CryptoEngine::createSHA384DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::SHA384);
}

std::shared_ptr<DigestEngine> CryptoEngine::createSHA512DigestEngine() const {
    return provider->createDigestEngine(DigestAlgorithm::SHA512);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA1024PrivateKey(const Bytes& encoded) const {
    return provider->createRSAPrivateKey(1024, encoded);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA2048PrivateKey(const Bytes& encoded) const {
    return provider->createRSAPrivateKey(2048, encoded);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA4096PrivateKey(const Bytes& encoded) const {
    return provider->createRSAPrivateKey(4096, encoded);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA1024PrivateKey(const Bytes& modulus,
                                                                     const Bytes& privateExponent,
                                                                     const Bytes& publicExponent) const {
    return provider->createRSAPrivateKey(1024, modulus, privateExponent, publicExponent);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA2048PrivateKey(const Bytes& modulus,
                                                                     const Bytes& privateExponent,
                                                                     const Bytes& publicExponent) const {
    return provider->createRSAPrivateKey(2048, modulus, privateExponent, publicExponent);
}

std::shared_ptr<RSAPrivateKey> CryptoEngine::createRSA4096PrivateKey(const Bytes& modulus,
                                                                     const Bytes& privateExponent,
                                                                     const Bytes& publicExponent) const {
    return provider->createRSAPrivateKey(4096, modulus, privateExponent, publicExponent);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA1024PublicKey(const Bytes& encoded) const {
    return provider->createRSAPublicKey(1024, encoded);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA2048PublicKey(const Bytes& encoded) const {
    return provider->createRSAPublicKey(2048, encoded);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA4096PublicKey(const Bytes& encoded) const {
    return provider->createRSAPublicKey(4096, encoded);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA1024PublicKey(const Bytes& modulus,
                                                                   const Bytes& exponent) const {
    return provider->createRSAPublicKey(1024, modulus, exponent);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA2048PublicKey(const Bytes& modulus,
                                                                   const Bytes& exponent) const {
    return provider->createRSAPublicKey(2048, modulus, exponent);
}

std::shared_ptr<RSAPublicKey> CryptoEngine::createRSA4096PublicKey(const Bytes& modulus,
                                                                   const Bytes& exponent) const {
    return provider->createRSAPublicKey(4096, modulus, exponent);
}

std::shared_ptr<RSASigner>
CryptoEngine::createRSA1024Signer(const std::shared_ptr<RSAPrivateKey>& key, RSAPaddingMode padding,
                                  const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSASigner(1024, key, padding, generator);
}

std::shared_ptr<RSASigner>
CryptoEngine::createRSA2048Signer(const std::shared_ptr<RSAPrivateKey>& key, RSAPaddingMode padding,
                                  const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSASigner(2048, key, padding, generator);
}

std::shared_ptr<RSASigner>
CryptoEngine::createRSA4096Signer(const std::shared_ptr<RSAPrivateKey>& key, RSAPaddingMode padding,
                                  const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSASigner(4096, key, padding, generator);
}

std::shared_ptr<RSAVerifier>
CryptoEngine::createRSA1024Verifier(const std::shared_ptr<RSAPublicKey>& key, RSAPaddingMode padding,
                                    const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSAVerifier(1024, key, padding, generator);
}

std::shared_ptr<RSAVerifier>
CryptoEngine::createRSA2048Verifier(const std::shared_ptr<RSAPublicKey>& key, RSAPaddingMode padding,
                                    const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSAVerifier(2048, key, padding, generator);
}

std::shared_ptr<RSAVerifier>
CryptoEngine::createRSA4096Verifier(const std::shared_ptr<RSAPublicKey>& key, RSAPaddingMode padding,
                                    const std::shared_ptr<CryptoPRNG>& generator) const {
    return provider->createRSAVerifier(4096, key, padding, generator);
}

} // namespace bedrock::crypto
