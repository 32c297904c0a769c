#include "SigningKeyReading.hpp"

#include <bedrock/crypto/SignatureValue.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/pem.h>

namespace bedrock::crypto {

namespace {

using Bytes = std::vector<unsigned char>;
using openssl::PkeyPtr;
using utils::InvalidKey;

constexpr std::size_t MOST_ENCODED_BYTES = 65536; // in PEM there can be text around the key

/// Gives no password, so that OpenSSL doesn't ask for one.
int refusePassword(char* /*buffer*/, int /*size*/, int /*writes*/, void* wasAsked) {
    *static_cast<bool*>(wasAsked) = true;
    return -1;
}

PkeyPtr readKey(const Bytes& encoded) {
    auto key = openssl::fromDer<PkeyPtr, d2i_AutoPrivateKey>(encoded.data(), encoded.size());
    if (key)
        return key;
    ERR_clear_error();
    bool wasAsked = false;
    const openssl::BioPtr source = openssl::readingBio(encoded);
    key.reset(PEM_read_bio_PrivateKey(source.get(), nullptr, refusePassword, &wasAsked));
    if (wasAsked)
        throw InvalidKey("The private key is protected by a password.");
    if (!key)
        openssl::fail<InvalidKey>("The bytes are no private key.");
    return key;
}

/// Whether the private half is there and belongs to the public one.
bool isWhole(EVP_PKEY& key) {
    const openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_pkey(nullptr, &key, nullptr)));
    return EVP_PKEY_pairwise_check(context.get()) == 1;
}

} // namespace

SigningKey encodeSigningKey(EVP_PKEY& key) {
    using Algorithm = PublicKeyKind::Algorithm;
    Bytes publicKey = openssl::toDer<i2d_PUBKEY>(key);
    const PublicKeyKind kind = publicKey.empty() ? PublicKeyKind() : describePublicKey(publicKey);
    if (kind.algorithm == Algorithm::Other || (kind.algorithm == Algorithm::EC && kind.curve.empty()))
        throw InvalidKey("The private key is neither RSA nor on the curve P-256, P-384 or P-521.");
    if (!isWhole(key))
        openssl::fail<InvalidKey>("The numbers of the private key don't belong together.");
    const openssl::Pkcs8Ptr structure(EVP_PKEY2PKCS8(&key));
    if (!structure)
        openssl::fail<InvalidKey>("The private key can't be encoded.");
    return {openssl::toDer<i2d_PKCS8_PRIV_KEY_INFO>(*structure), std::move(publicKey)};
}

SigningKey readSigningKey(const Bytes& encoded) {
    const openssl::ErrorScope scope;
    if (encoded.size() > MOST_ENCODED_BYTES)
        throw InvalidKey("The bytes are no private key.");
    return encodeSigningKey(*readKey(encoded));
}

SigningKey generateECKey(const std::string& curve) {
    if (curve != "P-256" && curve != "P-384" && curve != "P-521")
        throw InvalidKey("EC keys are on the curves P-256, P-384 and P-521.");
    const openssl::ErrorScope scope;
    const PkeyPtr key(EVP_EC_gen(curve.c_str()));
    if (!key)
        openssl::fail<utils::Exception>("An EC key can't be made.");
    return encodeSigningKey(*key);
}

Bytes readPublicKey(const Bytes& encoded) {
    using Algorithm = PublicKeyKind::Algorithm;
    const openssl::ErrorScope scope;
    if (encoded.size() > MOST_ENCODED_BYTES)
        throw InvalidKey("The bytes are no public key.");
    auto key = openssl::fromDer<PkeyPtr, d2i_PUBKEY>(encoded.data(), encoded.size());
    if (!key) {
        ERR_clear_error();
        key.reset(PEM_read_bio_PUBKEY(openssl::readingBio(encoded).get(), nullptr, nullptr, nullptr));
    }
    if (!key)
        openssl::fail<InvalidKey>("The bytes are no public key.");
    Bytes publicKey = openssl::toDer<i2d_PUBKEY>(*key);
    const PublicKeyKind kind = describePublicKey(publicKey);
    if (kind.algorithm == Algorithm::Other || (kind.algorithm == Algorithm::EC && kind.curve.empty()))
        throw InvalidKey("The public key is neither RSA nor on the curve P-256, P-384 or P-521.");
    return publicKey;
}

PublicKeyNumbers getPublicKeyNumbers(const Bytes& publicKey) {
    const PublicKeyKind kind = describePublicKey(publicKey); // also checks the size
    const openssl::ErrorScope scope;
    const auto key = openssl::fromDer<PkeyPtr, d2i_PUBKEY>(publicKey.data(), publicKey.size());
    PublicKeyNumbers numbers;
    if (kind.algorithm == PublicKeyKind::Algorithm::EC) {
        unsigned char* point = nullptr;
        EVP_PKEY_set_utf8_string_param(key.get(), OSSL_PKEY_PARAM_EC_POINT_CONVERSION_FORMAT, "uncompressed");
        const std::size_t size = EVP_PKEY_get1_encoded_public_key(key.get(), &point);
        numbers.point.assign(point, point + size);
        OPENSSL_free(point);
        return numbers;
    }
    const openssl::BnPtr modulus = openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_N);
    const openssl::BnPtr exponent = openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_E);
    if (!modulus || !exponent)
        throw InvalidKey("The public key is neither RSA nor EC.");
    return {openssl::toBytes(*modulus), openssl::toBytes(*exponent), {}};
}

} // namespace bedrock::crypto
