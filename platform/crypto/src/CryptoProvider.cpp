#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

#include "EvpDigestEngine.hpp"
#include "EvpRsaKeys.hpp"
#include "EvpRsaSignatures.hpp"
#include "RsaKeyCodec.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/rand.h>

namespace bedrock::crypto::cryptopp {

namespace {

class SystemGenerator final : public CryptoPRNG {
public:
    std::vector<unsigned char> generate(std::size_t count) override {
        const openssl::ErrorScope scope;
        std::vector<unsigned char> bytes(count);
        if (RAND_priv_bytes_ex(nullptr, bytes.data(), count, 0) != 1)
            openssl::fail<utils::Exception>("There are no random bytes.");
        return bytes;
    }
};

/// The key as an object of this provider.
template <typename Own, typename Key>
const Own& require(std::size_t bits, const std::shared_ptr<Key>& key, RSAPaddingMode padding) {
    const auto* own = dynamic_cast<const Own*>(key.get());
    if (!own)
        throw utils::InvalidKey("The key isn't one of this provider.");
    if (own->getKeySize() != bits)
        throw utils::InvalidKey("The key has " + std::to_string(own->getKeySize()) + " bits, not " +
                                std::to_string(bits) + ".");
    if (padding != RSAPaddingMode::PKCS1v15)
        throw utils::Exception("There is no such padding mode.");
    return *own;
}

} // namespace

std::shared_ptr<DigestEngine> CryptoProvider::createDigestEngine(DigestAlgorithm algorithm) {
    return std::make_shared<EvpDigestEngine>(algorithm);
}

std::shared_ptr<RSAPrivateKey> CryptoProvider::createRSAPrivateKey(std::size_t bits, const Bytes& encoded) {
    const openssl::ErrorScope scope;
    return std::make_shared<EvpRsaPrivateKey>(decodePrivateKey(bits, encoded));
}

std::shared_ptr<RSAPrivateKey> CryptoProvider::createRSAPrivateKey(std::size_t bits, const Bytes& modulus,
                                                                   const Bytes& privateExponent,
                                                                   const Bytes& publicExponent) {
    const openssl::ErrorScope scope;
    return std::make_shared<EvpRsaPrivateKey>(
        composePrivateKey(bits, modulus, privateExponent, publicExponent));
}

std::shared_ptr<RSAPublicKey> CryptoProvider::createRSAPublicKey(std::size_t bits, const Bytes& encoded) {
    const openssl::ErrorScope scope;
    return std::make_shared<EvpRsaPublicKey>(decodePublicKey(bits, encoded));
}

std::shared_ptr<RSAPublicKey> CryptoProvider::createRSAPublicKey(std::size_t bits, const Bytes& modulus,
                                                                 const Bytes& exponent) {
    const openssl::ErrorScope scope;
    return std::make_shared<EvpRsaPublicKey>(composePublicKey(bits, modulus, exponent));
}

std::shared_ptr<RSASigner> CryptoProvider::createRSASigner(std::size_t bits,
                                                           const std::shared_ptr<RSAPrivateKey>& key,
                                                           RSAPaddingMode padding,
                                                           const std::shared_ptr<CryptoPRNG>&) {
    return std::make_shared<EvpRsaSigner>(require<EvpRsaPrivateKey>(bits, key, padding).get());
}

std::shared_ptr<RSAVerifier> CryptoProvider::createRSAVerifier(std::size_t bits,
                                                               const std::shared_ptr<RSAPublicKey>& key,
                                                               RSAPaddingMode padding,
                                                               const std::shared_ptr<CryptoPRNG>&) {
    return std::make_shared<EvpRsaVerifier>(require<EvpRsaPublicKey>(bits, key, padding).get());
}

std::shared_ptr<CryptoPRNG> CryptoProvider::getDefaultCryptoPRNG() const {
    return std::make_shared<SystemGenerator>();
}

} // namespace bedrock::crypto::cryptopp
