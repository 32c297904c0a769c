#include <bedrock/certificates/PKCS12Certificate.hpp>

#include "CertificateAccess.hpp"
#include "SigningKeyReading.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/KeyBundle.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>
#include <openssl/err.h>

#include <memory>

namespace bedrock::certificates {

struct PKCS12Certificate::Key {
    explicit Key(std::vector<unsigned char> bytes) noexcept : exponent(std::move(bytes)) {}

    openssl::Secret exponent;
};

namespace {

using Bytes = std::vector<unsigned char>;

/// Provides old algorithms, in a context of its own, so that the application's context doesn't change.
struct LegacyContext {
    LegacyContext() : library(openssl::made(openssl::LibraryPtr(OSSL_LIB_CTX_new()))) {
        ordinary.reset(OSSL_PROVIDER_load(library.get(), "default"));
        legacy.reset(OSSL_PROVIDER_load(library.get(), "legacy"));
    }

    openssl::LibraryPtr library;
    openssl::ProviderPtr ordinary;
    openssl::ProviderPtr legacy; // null if it isn't installed
};

struct Content {
    std::unique_ptr<LegacyContext> legacy; ///< if it was read in one; outlives the rest
    openssl::PkeyPtr key;
    openssl::X509Ptr certificate;
    openssl::X509StackPtr others;
};

openssl::Pkcs12Ptr decode(const Bytes& bytes, OSSL_LIB_CTX* library) {
    PKCS12* bundle =
        openssl::made(openssl::Pkcs12Ptr(PKCS12_init_ex(NID_pkcs7_data, library, nullptr))).release();
    const unsigned char* position = bytes.data();
    // If it fails, it frees the bundle and sets the pointer to null.
    if (bytes.size() > static_cast<std::size_t>(INT32_MAX) ||
        !d2i_PKCS12(&bundle, &position, static_cast<long>(bytes.size())))
        openssl::fail<CertificateException>("The bytes are no PKCS#12 bundle.");
    return openssl::Pkcs12Ptr(bundle);
}

/// @return whether the bundle could be opened; if not, the error queue says why
bool open(PKCS12& bundle, const std::string& password, Content& content) {
    EVP_PKEY* key = nullptr;
    X509* certificate = nullptr;
    STACK_OF(X509)* others = nullptr;
    const int done = PKCS12_parse(&bundle, password.c_str(), &key, &certificate, &others);
    content.key.reset(key);
    content.certificate.reset(certificate);
    content.others.reset(others);
    return done == 1;
}

/// Whether the error queue reports an algorithm that no provider has.
bool isAlgorithmMissing() {
    return ERR_GET_REASON(ERR_peek_error()) == ERR_R_UNSUPPORTED;
}

[[noreturn]] void failToOpen(bool isLegacyMissing) {
    if (isLegacyMissing && isAlgorithmMissing())
        openssl::fail<CertificateException>(
            "The bundle is encrypted by an old algorithm that needs OpenSSL's legacy "
            "provider, which isn't installed.");
    if (ERR_GET_REASON(ERR_peek_last_error()) == PKCS12_R_MAC_VERIFY_FAILURE)
        openssl::fail<CertificateException>(
            "The password of the bundle is wrong, or the bundle was changed.");
    openssl::fail<CertificateException>("The bundle can't be opened.");
}

/// Through its DER form, because OpenSSL's own object belongs to the context in which the bundle was opened.
X509Certificate copyOf(X509& certificate) {
    return X509Certificate(openssl::toDer<i2d_X509>(certificate));
}

std::vector<X509Certificate> othersOf(const Content& content) {
    std::vector<X509Certificate> others;
    for (int index = 0; content.others && index < sk_X509_num(content.others.get()); ++index)
        others.push_back(copyOf(*sk_X509_value(content.others.get(), index)));
    return others;
}

Content open(const Bytes& bytes, const std::string& password) {
    Content content;
    if (open(*decode(bytes, nullptr), password, content))
        return content;
    if (!isAlgorithmMissing())
        failToOpen(false);
    content.legacy = std::make_unique<LegacyContext>();
    ERR_clear_error();
    if (!open(*decode(bytes, content.legacy->library.get()), password, content))
        failToOpen(!content.legacy->legacy);
    return content;
}

Bytes exponentOf(const EVP_PKEY& key) {
    if (EVP_PKEY_is_a(&key, "RSA-PSS"))
        throw CertificateException("The private key of the bundle is for RSA-PSS, which isn't supported.");
    const openssl::BnPtr exponent =
        EVP_PKEY_is_a(&key, "RSA") ? openssl::getNumber(key, OSSL_PKEY_PARAM_RSA_D) : nullptr;
    if (!exponent)
        openssl::fail<CertificateException>("The private key of the bundle isn't an RSA key.");
    return openssl::toBytes(*exponent);
}

/// The key of a bundle in the ordinary context, where the numbers of a key from an old bundle can be checked, too.
crypto::SigningKey keyOf(EVP_PKEY& key) try {
    const openssl::Pkcs8Ptr structure = openssl::made(openssl::Pkcs8Ptr(EVP_PKEY2PKCS8(&key)));
    const openssl::PkeyPtr ordinary(EVP_PKCS82PKEY(structure.get()));
    if (!ordinary)
        openssl::fail<CertificateException>("The private key of the bundle can't be used.");
    return crypto::encodeSigningKey(*ordinary);
} catch (const crypto::utils::InvalidKey& failure) {
    throw CertificateException(std::string("The private key of the bundle can't be used: ") + failure.what());
}

} // namespace

PKCS12Certificate::PKCS12Certificate(const Bytes& bytes, const std::string& password) {
    const openssl::ErrorScope scope;
    const Content content = open(bytes, password);
    if (content.key)
        key = std::make_shared<Key>(exponentOf(*content.key));
    if (content.certificate)
        certificate = copyOf(*content.certificate);
    for (X509Certificate& other : othersOf(content))
        chain.addCertificate(std::move(other));
}

Bytes PKCS12Certificate::getPrivateExponent() const {
    return key ? key->exponent.get() : Bytes();
}

KeyBundle readKeyBundle(const Bytes& bytes, const std::string& password) {
    const openssl::ErrorScope scope;
    const Content content = open(bytes, password);
    KeyBundle bundle;
    if (content.key)
        bundle.key = keyOf(*content.key);
    if (content.certificate)
        bundle.certificate = copyOf(*content.certificate);
    bundle.others = othersOf(content);
    return bundle;
}

} // namespace bedrock::certificates
