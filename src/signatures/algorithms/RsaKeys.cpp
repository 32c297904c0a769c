#include "signatures/algorithms/RsaKeys.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>
#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/RSAVerifier.hpp>

#include <algorithm>
#include <iterator>

namespace opc::model {

namespace {

using bedrock::crypto::CryptoEngine;
using bedrock::crypto::CryptoPRNG;
using bedrock::crypto::RSAPaddingMode;
using bedrock::crypto::RSAPrivateKey;
using bedrock::crypto::RSAPublicKey;
using bedrock::crypto::RSASigner;
using bedrock::crypto::RSAVerifier;
using PrivateKey = std::shared_ptr<RSAPrivateKey>;
using PublicKey = std::shared_ptr<RSAPublicKey>;
using Generator = std::shared_ptr<CryptoPRNG>;

/// The operations for keys of one size.
struct KeySize {
    std::uint64_t bits;
    PrivateKey (CryptoEngine::*readPrivateKey)(const Bytes&) const;
    PrivateKey (CryptoEngine::*makePrivateKey)(const Bytes&, const Bytes&, const Bytes&) const;
    PublicKey (CryptoEngine::*readPublicKey)(const Bytes&) const;
    PublicKey (CryptoEngine::*makePublicKey)(const Bytes&, const Bytes&) const;
    std::shared_ptr<RSASigner> (CryptoEngine::*makeSigner)(const PrivateKey&, RSAPaddingMode,
                                                           const Generator&) const;
    std::shared_ptr<RSAVerifier> (CryptoEngine::*makeVerifier)(const PublicKey&, RSAPaddingMode,
                                                               const Generator&) const;
};

const KeySize KEY_SIZES[] = {
    {1024, &CryptoEngine::createRSA1024PrivateKey, &CryptoEngine::createRSA1024PrivateKey,
     &CryptoEngine::createRSA1024PublicKey, &CryptoEngine::createRSA1024PublicKey,
     &CryptoEngine::createRSA1024Signer, &CryptoEngine::createRSA1024Verifier},
    {2048, &CryptoEngine::createRSA2048PrivateKey, &CryptoEngine::createRSA2048PrivateKey,
     &CryptoEngine::createRSA2048PublicKey, &CryptoEngine::createRSA2048PublicKey,
     &CryptoEngine::createRSA2048Signer, &CryptoEngine::createRSA2048Verifier},
    {4096, &CryptoEngine::createRSA4096PrivateKey, &CryptoEngine::createRSA4096PrivateKey,
     &CryptoEngine::createRSA4096PublicKey, &CryptoEngine::createRSA4096PublicKey,
     &CryptoEngine::createRSA4096Signer, &CryptoEngine::createRSA4096Verifier},
};

const KeySize* findKeySize(std::uint64_t bits) {
    const auto* const found = std::find_if(std::begin(KEY_SIZES), std::end(KEY_SIZES),
                                           [bits](const KeySize& size) { return size.bits == bits; });
    return found == std::end(KEY_SIZES) ? nullptr : found;
}

} // namespace

std::uint64_t rsaKeySize(SignatureMethod method) {
    return method > SignatureMethod::RSA4096 ? 0 : signatureMethodToKeySize(method);
}

PublicKey createRsaPublicKey(const CryptoEngine& engine, std::uint64_t bits, const Bytes& publicKey) {
    const KeySize* const size = findKeySize(bits);
    return size == nullptr ? nullptr : (engine.*size->readPublicKey)(publicKey);
}

std::shared_ptr<RSASigner> createRsaSigner(const CryptoEngine& engine, std::uint64_t bits,
                                           const Bytes& privateKey) {
    const KeySize* const size = findKeySize(bits);
    if (size == nullptr)
        return nullptr;
    const PrivateKey key = (engine.*size->readPrivateKey)(privateKey);
    return (engine.*size->makeSigner)(key, engine.getDefaultRSAPaddingModeSigning(),
                                      engine.getDefaultCryptoPRNG());
}

std::shared_ptr<RSAVerifier> createRsaVerifier(const CryptoEngine& engine, std::uint64_t bits,
                                               const Bytes& publicKey) {
    const KeySize* const size = findKeySize(bits);
    if (size == nullptr)
        return nullptr;
    const PublicKey key = createRsaPublicKey(engine, bits, publicKey);
    return (engine.*size->makeVerifier)(key, engine.getDefaultRSAPaddingModeSigning(),
                                        engine.getDefaultCryptoPRNG());
}

Bytes encodeRsaPublicKey(const CryptoEngine& engine, std::uint64_t bits, const Bytes& modulus,
                         const Bytes& exponent) {
    const KeySize* const size = findKeySize(bits);
    return size == nullptr ? Bytes() : (engine.*size->makePublicKey)(modulus, exponent)->getAsByteArray();
}

Bytes encodeRsaPrivateKey(const CryptoEngine& engine, std::uint64_t bits, const Bytes& modulus,
                          const Bytes& privateExponent, const Bytes& publicExponent) {
    const KeySize* const size = findKeySize(bits);
    return size == nullptr
               ? Bytes()
               : (engine.*size->makePrivateKey)(modulus, privateExponent, publicExponent)->getAsByteArray();
}

} // namespace opc::model
