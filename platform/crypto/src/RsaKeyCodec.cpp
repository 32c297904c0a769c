#include "RsaKeyCodec.hpp"

#include "RsaNumbers.hpp"
#include "RsaPrimes.hpp"
#include "RsaPublicKeyScanner.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>
#include <openssl/pem.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace bedrock::crypto {

namespace {

using Bytes = std::vector<unsigned char>;
using openssl::BnPtr;
using openssl::PkeyPtr;
using utils::InvalidKey;
using utils::UnusableKey;

// The PEM form of a key of 4096 bits has about 3,300 characters. Text may precede it.
constexpr std::size_t MaximalEncodedSize = std::size_t{16} * 1024;
constexpr int MaximalExponentBits = 64;

struct PemBlock {
    char* name = nullptr;
    char* header = nullptr;
    unsigned char* data = nullptr;
    long size = 0;

    PemBlock() = default;
    PemBlock(const PemBlock&) = delete;
    PemBlock& operator=(const PemBlock&) = delete;
    ~PemBlock() {
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_clear_free(data, static_cast<std::size_t>(size));
    }
};

bool isPem(const Bytes& encoded) {
    constexpr std::string_view start = "-----BEGIN ";
    return std::search(encoded.begin(), encoded.end(), start.begin(), start.end()) != encoded.end();
}

EVP_PKEY* readPkcs1Private(EVP_PKEY** key, const unsigned char** position, long size) {
    return d2i_PrivateKey(EVP_PKEY_RSA, key, position, size);
}

EVP_PKEY* readPkcs1Public(EVP_PKEY** key, const unsigned char** position, long size) {
    return d2i_PublicKey(EVP_PKEY_RSA, key, position, size);
}

EVP_PKEY* readPkcs8(EVP_PKEY**, const unsigned char** position, long size) {
    const openssl::Pkcs8Ptr structure(d2i_PKCS8_PRIV_KEY_INFO(nullptr, position, size));
    return structure ? EVP_PKCS82PKEY(structure.get()) : nullptr;
}

PkeyPtr readPrivate(const unsigned char* der, std::size_t size) {
    auto key = openssl::fromDer<PkeyPtr, readPkcs8>(der, size);
    return key ? std::move(key) : openssl::fromDer<PkeyPtr, readPkcs1Private>(der, size);
}

PkeyPtr readPublic(const unsigned char* der, std::size_t size) {
    auto key = openssl::fromDer<PkeyPtr, d2i_PUBKEY>(der, size);
    return key ? std::move(key) : openssl::fromDer<PkeyPtr, readPkcs1Public>(der, size);
}

/// Reads the key from DER, or from the first block of PEM.
PkeyPtr readKey(const Bytes& encoded, PkeyPtr (*read)(const unsigned char*, std::size_t), const char* kind) {
    const std::string failure = std::string("The bytes are no RSA ") + kind + " key.";
    if (encoded.size() > MaximalEncodedSize)
        throw InvalidKey(failure);
    PkeyPtr key;
    if (isPem(encoded)) {
        PemBlock block;
        if (!PEM_read_bio(openssl::readingBio(encoded).get(), &block.name, &block.header, &block.data,
                          &block.size))
            openssl::fail<InvalidKey>(failure);
        if (*block.header || std::string_view(block.name).find("ENCRYPTED") != std::string_view::npos)
            throw UnusableKey("The key is encrypted with a password.");
        key = read(block.data, static_cast<std::size_t>(block.size));
    } else {
        key = read(encoded.data(), encoded.size());
    }
    if (key && EVP_PKEY_is_a(key.get(), "RSA-PSS"))
        throw UnusableKey("The key is for RSA-PSS, which isn't supported.");
    if (!key || !EVP_PKEY_is_a(key.get(), "RSA"))
        openssl::fail<InvalidKey>(failure);
    return key;
}

/// The numbers of a public key in any form.
RsaPublicNumbers decodePublicNumbers(const Bytes& encoded) {
    const PkeyPtr key = readKey(encoded, readPublic, "public");
    RsaPublicNumbers numbers{openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_N),
                             openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_E)};
    if (!numbers.modulus || !numbers.exponent)
        openssl::fail<InvalidKey>("The bytes are no RSA public key.");
    return numbers;
}

/// Without leading zeros, which some writers put before a number whose first bit is set.
Bytes significant(const Bytes& number) {
    return Bytes(std::find_if(number.begin(), number.end(), [](unsigned char byte) { return byte != 0; }),
                 number.end());
}

void checkPublicNumbers(std::size_t bits, const BIGNUM& modulus, const BIGNUM& exponent) {
    const auto size = static_cast<std::size_t>(BN_num_bytes(&modulus)) * 8;
    if (size != bits)
        throw InvalidKey("The key has " + std::to_string(size) + " bits, not " + std::to_string(bits) + ".");
    if (!BN_is_odd(&modulus))
        throw UnusableKey("The key's modulus is even.");
    if (!BN_is_odd(&exponent) || BN_is_one(&exponent) || BN_num_bits(&exponent) > MaximalExponentBits)
        throw UnusableKey("The key's public exponent isn't odd, above 1 and of 64 bits at most.");
}

void checkPrivateNumbers(std::size_t bits, const BIGNUM& modulus, const BIGNUM& privateExponent,
                         const BIGNUM& publicExponent) {
    checkPublicNumbers(bits, modulus, publicExponent);
    if (BN_is_zero(&privateExponent) || BN_is_one(&privateExponent) ||
        BN_cmp(&privateExponent, &modulus) >= 0)
        throw UnusableKey("The key's private exponent isn't between 1 and the modulus.");
}

PkeyPtr completePrivateKey(const BIGNUM& modulus, const BIGNUM& privateExponent,
                           const BIGNUM& publicExponent) {
    PkeyPtr key = makePrivateKey(modulus, publicExponent, privateExponent);
    if (!key || !belongTogether(*key))
        openssl::fail<UnusableKey>("The key's modulus and exponents don't belong together.");
    return key;
}

/// Whether a key lacks its primes, or the numbers that follow from them, as some writers leave them out.
bool isIncomplete(const EVP_PKEY& key) {
    const char* const names[] = {OSSL_PKEY_PARAM_RSA_FACTOR1, OSSL_PKEY_PARAM_RSA_FACTOR2,
                                 OSSL_PKEY_PARAM_RSA_EXPONENT1, OSSL_PKEY_PARAM_RSA_EXPONENT2,
                                 OSSL_PKEY_PARAM_RSA_COEFFICIENT1};
    return std::any_of(std::begin(names), std::end(names), [&key](const char* name) {
        const BnPtr number = openssl::getNumber(key, name);
        return !number || BN_is_zero(number.get());
    });
}

PkeyPtr buildPublicKey(const BIGNUM& modulus, const BIGNUM& exponent) {
    const openssl::ParamBuilderPtr builder = openssl::made(openssl::ParamBuilderPtr(OSSL_PARAM_BLD_new()));
    if (!OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, &modulus) ||
        !OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, &exponent))
        throw std::bad_alloc();
    const openssl::ParamsPtr params =
        openssl::made(openssl::ParamsPtr(OSSL_PARAM_BLD_to_param(builder.get())));
    const openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr)));
    EVP_PKEY* key = nullptr;
    if (EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, params.get()) != 1)
        openssl::fail<InvalidKey>("The numbers make no RSA public key.");
    return PkeyPtr(key);
}

/// Refuses numbers by their length alone, so that long numbers cost no more than a look at their bytes.
void checkLengths(std::size_t bits, const Bytes& modulus, const Bytes& exponent,
                  std::size_t maximalExponentSize) {
    if (modulus.size() * 8 != bits)
        throw InvalidKey("The key has " + std::to_string(modulus.size() * 8) + " bits, not " +
                         std::to_string(bits) + ".");
    if (exponent.size() > maximalExponentSize)
        throw InvalidKey("The key has an exponent of " + std::to_string(exponent.size()) + " bytes.");
}

} // namespace

PkeyPtr decodePrivateKey(std::size_t bits, const Bytes& encoded) {
    PkeyPtr key = readKey(encoded, readPrivate, "private");
    const BnPtr modulus = openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_N);
    const BnPtr publicExponent = openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_E);
    const BnPtr privateExponent = openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_D);
    if (!modulus || !publicExponent || !privateExponent)
        openssl::fail<InvalidKey>("The bytes are no RSA private key.");
    checkPrivateNumbers(bits, *modulus, *privateExponent, *publicExponent);
    if (isIncomplete(*key))
        return completePrivateKey(*modulus, *privateExponent, *publicExponent);
    if (!belongTogether(*key))
        throw UnusableKey("The key's numbers don't belong together.");
    return key;
}

PkeyPtr composePrivateKey(std::size_t bits, const Bytes& modulus, const Bytes& privateExponent,
                          const Bytes& publicExponent) {
    const openssl::Secret secret(significant(privateExponent));
    const Bytes modulusBytes = significant(modulus);
    const Bytes exponentBytes = significant(publicExponent);
    checkLengths(bits, modulusBytes, exponentBytes, MaximalExponentBits / 8);
    checkLengths(bits, modulusBytes, secret.get(), bits / 8);
    const BnPtr n = openssl::toNumber(modulusBytes);
    const BnPtr d = openssl::toNumber(secret.get());
    const BnPtr e = openssl::toNumber(exponentBytes);
    checkPrivateNumbers(bits, *n, *d, *e);
    return completePrivateKey(*n, *d, *e);
}

PkeyPtr decodePublicKey(std::size_t bits, const Bytes& encoded) {
    auto numbers = scanRsaPublicKey(encoded);
    if (!numbers)
        numbers = decodePublicNumbers(encoded);
    checkPublicNumbers(bits, *numbers->modulus, *numbers->exponent);
    // Always encodes the same form, whatever form was read.
    return buildPublicKey(*numbers->modulus, *numbers->exponent);
}

PkeyPtr composePublicKey(std::size_t bits, const Bytes& modulus, const Bytes& exponent) {
    const Bytes modulusBytes = significant(modulus);
    const Bytes exponentBytes = significant(exponent);
    checkLengths(bits, modulusBytes, exponentBytes, MaximalExponentBits / 8);
    const BnPtr n = openssl::toNumber(modulusBytes);
    const BnPtr e = openssl::toNumber(exponentBytes);
    checkPublicNumbers(bits, *n, *e);
    return buildPublicKey(*n, *e);
}

Bytes encodePrivateKey(const EVP_PKEY& key) {
    const openssl::Pkcs8Ptr structure(EVP_PKEY2PKCS8(&key));
    Bytes der = structure ? openssl::toDer<i2d_PKCS8_PRIV_KEY_INFO>(*structure) : Bytes();
    if (der.empty())
        openssl::fail<utils::Exception>("The RSA private key can't be encoded.");
    return der;
}

Bytes encodePublicKey(const EVP_PKEY& key) {
    Bytes der = openssl::toDer<i2d_PUBKEY>(key);
    if (der.empty())
        openssl::fail<utils::Exception>("The RSA public key can't be encoded.");
    return der;
}

} // namespace bedrock::crypto
