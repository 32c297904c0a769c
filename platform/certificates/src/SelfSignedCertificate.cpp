#include <bedrock/certificates/SelfSignedCertificate.hpp>

#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace bedrock::certificates {

namespace {

using ExtensionPtr = std::unique_ptr<X509_EXTENSION, openssl::Deleter<X509_EXTENSION_free>>;

constexpr int SERIAL_BITS = 127; // positive, in 16 bytes (RFC 5280 section 4.1.2.2)

void require(bool done) {
    if (!done)
        openssl::fail<CertificateException>("The certificate can't be made.");
}

openssl::PkeyPtr readKey(const crypto::SigningKey& key) {
    const auto& encoded = key.getPrivateKey();
    const auto structure =
        openssl::fromDer<openssl::Pkcs8Ptr, d2i_PKCS8_PRIV_KEY_INFO>(encoded.data(), encoded.size());
    openssl::PkeyPtr read(structure ? EVP_PKCS82PKEY(structure.get()) : nullptr);
    if (!read)
        openssl::fail<crypto::utils::InvalidKey>("The bytes are no private key.");
    return read;
}

void setSerialNumber(X509& certificate) {
    const openssl::BnPtr number = openssl::made(openssl::BnPtr(BN_new()));
    require(BN_rand(number.get(), SERIAL_BITS, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1 &&
            BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(&certificate)) != nullptr);
}

void setName(X509& certificate, const std::string& name) {
    X509_NAME* const subject = X509_get_subject_name(&certificate);
    require(X509_NAME_add_entry_by_NID(subject, NID_commonName, MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(name.data()),
                                       static_cast<int>(name.size()), -1, 0) == 1 &&
            X509_set_issuer_name(&certificate, subject) == 1);
}

/// @param value  in the syntax of OpenSSL's configuration
void addExtension(X509& certificate, int kind, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, &certificate, &certificate, nullptr, nullptr, 0);
    const ExtensionPtr extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value));
    require(extension && X509_add_ext(&certificate, extension.get(), -1) == 1);
}

/// A digest that is no weaker than the key.
const EVP_MD* digestFor(const EVP_PKEY& key) {
    const int bits = EVP_PKEY_get_security_bits(&key);
    return bits > 192 ? EVP_sha512() : bits > 128 ? EVP_sha384() : EVP_sha256();
}

} // namespace

X509Certificate makeSelfSignedCertificate(const crypto::SigningKey& key, const std::string& name,
                                          unsigned days) {
    constexpr unsigned MOST_DAYS = 36500;
    const openssl::ErrorScope scope;
    if (name.empty() || days == 0 || days > MOST_DAYS)
        throw CertificateException("The name is empty, or the days aren't 1 to 36500.");
    const openssl::PkeyPtr pair = readKey(key);
    openssl::X509Ptr certificate = openssl::made(openssl::X509Ptr(X509_new()));
    require(X509_set_version(certificate.get(), X509_VERSION_3) == 1);
    setSerialNumber(*certificate);
    setName(*certificate, name);
    require(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0) != nullptr &&
            X509_time_adj_ex(X509_getm_notAfter(certificate.get()), static_cast<int>(days), 0, nullptr) !=
                nullptr &&
            X509_set_pubkey(certificate.get(), pair.get()) == 1);
    addExtension(*certificate, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(*certificate, NID_key_usage, "critical,digitalSignature,nonRepudiation");
    addExtension(*certificate, NID_subject_key_identifier, "hash");
    require(X509_sign(certificate.get(), pair.get(), digestFor(*pair)) != 0);
    return detail::CertificateAccess::make(std::move(certificate));
}

} // namespace bedrock::certificates
