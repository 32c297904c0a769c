#include "EvpRsaKeys.hpp"

#include "RsaKeyCodec.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>

namespace bedrock::crypto {

namespace {

std::size_t sizeInWholeBytes(const EVP_PKEY& key) {
    return (static_cast<std::size_t>(EVP_PKEY_get_bits(&key)) + 7) / 8 * 8;
}

} // namespace

std::size_t EvpRsaPrivateKey::getKeySize() const {
    return sizeInWholeBytes(*key);
}

std::vector<unsigned char> EvpRsaPrivateKey::getAsByteArray() const {
    const openssl::ErrorScope scope;
    return encodePrivateKey(*key);
}

std::size_t EvpRsaPublicKey::getKeySize() const {
    return sizeInWholeBytes(*key);
}

std::vector<unsigned char> EvpRsaPublicKey::getModulus() const {
    return getNumber(OSSL_PKEY_PARAM_RSA_N);
}

std::vector<unsigned char> EvpRsaPublicKey::getPublicExponent() const {
    return getNumber(OSSL_PKEY_PARAM_RSA_E);
}

std::vector<unsigned char> EvpRsaPublicKey::getAsByteArray() const {
    const openssl::ErrorScope scope;
    return encodePublicKey(*key);
}

std::vector<unsigned char> EvpRsaPublicKey::getNumber(const char* name) const {
    const openssl::ErrorScope scope;
    const openssl::BnPtr number = openssl::getNumber(*key, name);
    if (!number)
        openssl::fail<utils::InvalidKey>("The RSA public key doesn't give its numbers.");
    return openssl::toBytes(*number);
}

} // namespace bedrock::crypto
