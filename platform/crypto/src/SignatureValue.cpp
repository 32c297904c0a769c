#include <bedrock/crypto/SignatureValue.hpp>

#include "EvpDigestEngine.hpp"
#include "OpenSsl.hpp"
#include "PlainPublicKeys.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace bedrock::crypto {

namespace {

using Bytes = std::vector<unsigned char>;
using openssl::PkeyPtr;
using utils::InvalidKey;

using EcdsaPtr = std::unique_ptr<ECDSA_SIG, openssl::Deleter<ECDSA_SIG_free>>;

constexpr std::size_t MOST_KEY_BYTES = 16384; // of an encoded key

bool isRSA(const EVP_PKEY& key) {
    return EVP_PKEY_is_a(&key, "RSA") || EVP_PKEY_is_a(&key, "RSA-PSS");
}

void throwIfUnusable(const EVP_PKEY& key) {
    if (!isRSA(key))
        return;
    const openssl::BnPtr exponent = openssl::getNumber(key, OSSL_PKEY_PARAM_RSA_E);
    if (!exponent)
        throw InvalidKey("The RSA key can't be used.");
    throwIfUnusableNumbers(EVP_PKEY_get_bits(&key), *exponent);
}

PkeyPtr readPublic(const Bytes& encoded) {
    PkeyPtr key = encoded.size() > MOST_KEY_BYTES ? PkeyPtr() : readPlainPublicKey(encoded);
    if (key)
        return key;
    if (encoded.size() <= MOST_KEY_BYTES)
        key = openssl::fromDer<PkeyPtr, d2i_PUBKEY>(encoded.data(), encoded.size());
    if (!key)
        openssl::fail<InvalidKey>("The bytes are no public key.");
    throwIfUnusable(*key);
    return key;
}

PkeyPtr share(const PkeyPtr& key) {
    EVP_PKEY_up_ref(key.get());
    return PkeyPtr(key.get());
}

/// The key that was read last, ready to use. Who verifies many packages meets the same signers, and OpenSSL needs as long to
/// prepare a key of RSA as to verify with it.
PkeyPtr lastPublic(const Bytes& encoded) {
    struct LastKey {
        std::mutex mutex;
        Bytes encoded;
        PkeyPtr key;
    };
    static LastKey& last = *new LastKey; // OpenSSL may end before what is static here
    {
        const std::lock_guard<std::mutex> lock(last.mutex);
        if (last.key && last.encoded == encoded)
            return share(last.key);
    }
    PkeyPtr key = readPublic(encoded);
    const std::lock_guard<std::mutex> lock(last.mutex);
    last.encoded = encoded;
    last.key = share(key);
    return key;
}

PkeyPtr readPrivate(const Bytes& encoded) {
    const auto structure =
        encoded.size() > MOST_KEY_BYTES
            ? openssl::Pkcs8Ptr()
            : openssl::fromDer<openssl::Pkcs8Ptr, d2i_PKCS8_PRIV_KEY_INFO>(encoded.data(), encoded.size());
    PkeyPtr key(structure ? EVP_PKCS82PKEY(structure.get()) : nullptr);
    if (!key)
        openssl::fail<InvalidKey>("The bytes are no private key.");
    throwIfUnusable(*key);
    return key;
}

Bytes encode(const EVP_PKEY& key) {
    Bytes der = openssl::toDer<i2d_PUBKEY>(key);
    if (der.empty())
        openssl::fail<utils::Exception>("The public key can't be encoded.");
    return der;
}

std::string curveOf(const EVP_PKEY& key) {
    const NamedCurve* const curve = findCurveOf(key);
    return curve == nullptr ? std::string() : curve->name;
}

bool fits(const EVP_PKEY& key, SignatureScheme scheme) {
    switch (scheme) {
    case SignatureScheme::RSAPKCS1:
        return EVP_PKEY_is_a(&key, "RSA");
    case SignatureScheme::RSAPSS:
        return isRSA(key);
    default:
        return EVP_PKEY_is_a(&key, "EC");
    }
}

/// Sets what the scheme says about a signature on RSA.
/// @param context  of a call that signs or verifies
bool setScheme(EVP_PKEY_CTX* context, SignatureScheme scheme) {
    if (scheme == SignatureScheme::ECDSA)
        return true;
    if (scheme == SignatureScheme::RSAPKCS1)
        return EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING) == 1;
    return EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING) == 1 &&
           EVP_PKEY_CTX_set_rsa_pss_saltlen(context, RSA_PSS_SALTLEN_DIGEST) == 1;
}

std::size_t orderSize(const EVP_PKEY& key) {
    return (static_cast<std::size_t>(EVP_PKEY_get_bits(&key)) + 7) / 8;
}

/// The form in which OpenSSL takes r and s; empty if the value has a length that they can't have. Some programs leave out zeros
/// that begin both.
Bytes toDer(const EVP_PKEY& key, const Bytes& value) {
    const int size = static_cast<int>(value.size() / 2);
    if (value.empty() || value.size() % 2 != 0 || value.size() > 2 * orderSize(key))
        return {};
    const EcdsaPtr pair = openssl::made(EcdsaPtr(ECDSA_SIG_new()));
    BIGNUM* const r = BN_bin2bn(value.data(), size, nullptr);
    BIGNUM* const s = BN_bin2bn(value.data() + size, size, nullptr);
    if (!ECDSA_SIG_set0(pair.get(), r, s))
        throw std::bad_alloc();
    return openssl::toDer<i2d_ECDSA_SIG>(*pair);
}

Bytes fromDer(const EVP_PKEY& key, const Bytes& der) {
    const auto pair = openssl::fromDer<EcdsaPtr, d2i_ECDSA_SIG>(der.data(), der.size());
    const std::size_t size = orderSize(key);
    Bytes value(2 * size);
    if (!pair || BN_bn2binpad(ECDSA_SIG_get0_r(pair.get()), value.data(), static_cast<int>(size)) < 0 ||
        BN_bn2binpad(ECDSA_SIG_get0_s(pair.get()), value.data() + size, static_cast<int>(size)) < 0)
        openssl::fail<utils::Exception>("The key can't sign.");
    return value;
}

bool holds(EVP_PKEY& key, SignatureScheme scheme, DigestAlgorithm algorithm, const std::string& content,
           const Bytes& value) {
    const openssl::MdCtxPtr context = openssl::made(openssl::MdCtxPtr(EVP_MD_CTX_new()));
    EVP_PKEY_CTX* of = nullptr;
    return EVP_DigestVerifyInit_ex(context.get(), &of, getOpenSslName(algorithm), nullptr, nullptr, &key,
                                   nullptr) == 1 &&
           setScheme(of, scheme) &&
           EVP_DigestVerify(context.get(), value.data(), value.size(),
                            reinterpret_cast<const unsigned char*>(content.data()), content.size()) == 1;
}

/// DigestInfo without parameters (RFC 8017 section 9.2), in front of the digest.
Bytes digestInfoWithoutNull(DigestAlgorithm algorithm, const Bytes& digest) {
    Bytes oid;
    switch (algorithm) {
    case DigestAlgorithm::SHA1:
        oid = {0x2B, 0x0E, 0x03, 0x02, 0x1A};
        break;
    case DigestAlgorithm::SHA256:
        oid = {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x01};
        break;
    case DigestAlgorithm::SHA384:
        oid = {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x02};
        break;
    case DigestAlgorithm::SHA512:
        oid = {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x03};
        break;
    default:
        return {};
    }
    const auto byte = [](std::size_t number) { return static_cast<unsigned char>(number); };
    Bytes info{
        0x30, byte(oid.size() + digest.size() + 6), 0x30, byte(oid.size() + 2), 0x06, byte(oid.size())};
    info.insert(info.end(), oid.begin(), oid.end());
    info.insert(info.end(), {0x04, byte(digest.size())});
    info.insert(info.end(), digest.begin(), digest.end());
    return info;
}

bool holdsWithoutNull(EVP_PKEY& key, DigestAlgorithm algorithm, const std::string& content,
                      const Bytes& value) {
    const Bytes expected = digestInfoWithoutNull(
        algorithm, EvpDigestEngine(algorithm).computeDigest(Bytes(content.begin(), content.end())));
    const openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_pkey(nullptr, &key, nullptr)));
    Bytes recovered(static_cast<std::size_t>(EVP_PKEY_get_size(&key)));
    std::size_t size = recovered.size();
    if (expected.empty() || EVP_PKEY_verify_recover_init(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        EVP_PKEY_verify_recover(context.get(), recovered.data(), &size, value.data(), value.size()) != 1)
        return false;
    recovered.resize(size);
    return recovered == expected;
}

PublicKeyKind describe(const EVP_PKEY& key) {
    using Algorithm = PublicKeyKind::Algorithm;
    const Algorithm algorithm = EVP_PKEY_is_a(&key, "RSA")       ? Algorithm::RSA
                                : EVP_PKEY_is_a(&key, "RSA-PSS") ? Algorithm::RSAPSS
                                : EVP_PKEY_is_a(&key, "EC")      ? Algorithm::EC
                                                                 : Algorithm::Other;
    return {algorithm, static_cast<std::size_t>(std::max(0, EVP_PKEY_get_bits(&key))), curveOf(key)};
}

SignatureValueStatus check(EVP_PKEY& key, SignatureScheme scheme, DigestAlgorithm algorithm,
                           const std::string& content, const Bytes& value) {
    if (!fits(key, scheme))
        return SignatureValueStatus::Wrong;
    const Bytes given = scheme == SignatureScheme::ECDSA ? toDer(key, value) : value;
    if (holds(key, scheme, algorithm, content, given))
        return SignatureValueStatus::Right;
    return scheme == SignatureScheme::RSAPKCS1 && holdsWithoutNull(key, algorithm, content, value)
               ? SignatureValueStatus::RightWithoutNull
               : SignatureValueStatus::Wrong;
}

} // namespace

PublicKeyKind describePublicKey(const Bytes& publicKey) {
    const openssl::ErrorScope scope;
    return describe(*readPublic(publicKey));
}

Bytes makeRSAPublicKey(const Bytes& modulus, const Bytes& exponent) {
    const openssl::ErrorScope scope;
    if (modulus.size() > MOST_KEY_BYTES || exponent.size() > MOST_KEY_BYTES)
        throw InvalidKey("The numbers make no public key.");
    const openssl::BnPtr n = openssl::toNumber(modulus);
    const openssl::BnPtr e = openssl::toNumber(exponent);
    throwIfUnusableNumbers(BN_num_bits(n.get()), *e);
    return encodeRsaKey(*n, *e);
}

Bytes makeECPublicKey(const std::string& curve, const Bytes& point) {
    const openssl::ErrorScope scope;
    const NamedCurve* const known = findCurve(curve);
    if (known == nullptr)
        throw InvalidKey("There is no such curve.");
    return encode(*makeEcKey(*known, point.data(), point.size()));
}

CheckedSignatureValue checkSignatureValue(const Bytes& publicKey, SignatureScheme scheme,
                                          DigestAlgorithm algorithm, const std::string& content,
                                          const Bytes& value) {
    const openssl::ErrorScope scope;
    const PkeyPtr key = lastPublic(publicKey);
    return {check(*key, scheme, algorithm, content, value), describe(*key)};
}

Bytes makeSignatureValue(const Bytes& privateKey, SignatureScheme scheme, DigestAlgorithm algorithm,
                         const std::string& content) {
    const openssl::ErrorScope scope;
    const PkeyPtr key = readPrivate(privateKey);
    const openssl::MdCtxPtr context = openssl::made(openssl::MdCtxPtr(EVP_MD_CTX_new()));
    const auto* const bytes = reinterpret_cast<const unsigned char*>(content.data());
    EVP_PKEY_CTX* of = nullptr;
    Bytes value(static_cast<std::size_t>(EVP_PKEY_get_size(key.get())));
    std::size_t size = value.size();
    if (!fits(*key, scheme) ||
        EVP_DigestSignInit_ex(context.get(), &of, getOpenSslName(algorithm), nullptr, nullptr, key.get(),
                              nullptr) != 1 ||
        !setScheme(of, scheme) ||
        EVP_DigestSign(context.get(), value.data(), &size, bytes, content.size()) != 1)
        openssl::fail<utils::Exception>("The key can't sign.");
    value.resize(size);
    if (!holds(*key, scheme, algorithm, content, value)) // a wrong value can reveal the primes
        openssl::fail<utils::Exception>("What the key signs doesn't hold by its public half.");
    return scheme == SignatureScheme::ECDSA ? fromDer(*key, value) : value;
}

} // namespace bedrock::crypto
