#include <bedrock/certificates/X509Certificate.hpp>

#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Base64.hpp>

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/provider.h>

#include <ctime>
#include <new>
#include <utility>

namespace bedrock::certificates {

namespace {

using Bytes = std::vector<unsigned char>;
using detail::CertificateAccess;

Bytes numberOfKey(const X509Certificate& certificate, const char* name) {
    if (certificate.empty())
        return {};
    const openssl::ErrorScope scope;
    const EVP_PKEY* key = X509_get0_pubkey(&CertificateAccess::get(certificate));
    if (!key || !EVP_PKEY_is_a(key, "RSA"))
        return {};
    const openssl::BnPtr number = openssl::getNumber(*key, name);
    return number ? openssl::toBytes(*number) : Bytes();
}

/// A context of OpenSSL without algorithms. It is never freed: certificates point to it.
OSSL_LIB_CTX* makeEmptyContext() {
    OSSL_LIB_CTX* const context = OSSL_LIB_CTX_new();
    if (context == nullptr || OSSL_PROVIDER_load(context, "null") == nullptr)
        throw std::bad_alloc();
    return context;
}

/// Reads a certificate, but for its key.
X509* readFields(X509** /*target*/, const unsigned char** bytes, long size) {
    static OSSL_LIB_CTX* const emptyContext = makeEmptyContext();
    X509* certificate = X509_new_ex(emptyContext, nullptr);
    return d2i_X509(&certificate, bytes, size); // which frees it if it fails
}

openssl::X509Ptr readPem(const Bytes& bytes) {
    const openssl::BioPtr source = openssl::readingBio(bytes);
    if (openssl::X509Ptr first = detail::readPemCertificate(*source, PEM_read_bio_X509)) {
        if (detail::readPemCertificate(*source, PEM_read_bio_X509))
            throw X509CertificateException("The bytes are more than one certificate.");
        return first;
    }
    openssl::fail<X509CertificateException>("The bytes are no certificate.");
}

std::string toText(const ASN1_TIME* time) {
    std::tm fields{};
    if (ASN1_TIME_to_tm(time, &fields) != 1)
        openssl::fail<X509CertificateException>("A date in the certificate can't be read.");
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &fields)};
}

void freeText(char* text) {
    OPENSSL_free(text);
}

} // namespace

openssl::X509Ptr detail::readPemCertificate(BIO& source, decltype(PEM_read_bio_X509)& read) {
    openssl::X509Ptr certificate(read(&source, nullptr, noPassword, nullptr));
    // A missing further block is the normal end.
    if (!certificate && ERR_GET_REASON(ERR_peek_last_error()) != PEM_R_NO_START_LINE)
        openssl::fail<X509CertificateException>("A certificate can't be read.");
    return certificate;
}

std::string detail::toText(const X509_NAME& name) {
    const openssl::BioPtr target = openssl::made(openssl::BioPtr(BIO_new(BIO_s_mem())));
    if (X509_NAME_print_ex(target.get(), &name, 0, XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB) < 0)
        openssl::fail<X509CertificateException>("The name in a certificate can't be read.");
    const char* text = nullptr;
    const long size = BIO_get_mem_data(target.get(), &text);
    return size > 0 ? std::string(text, static_cast<std::size_t>(size)) : std::string();
}

X509Certificate detail::CertificateAccess::make(openssl::X509Ptr certificate) {
    auto content = std::make_shared<X509Certificate::Content>();
    content->whole = std::move(certificate);
    X509Certificate made;
    made.content = std::move(content);
    return made;
}

X509& detail::CertificateAccess::get(const X509Certificate& certificate) {
    X509& fields = getFields(certificate);
    const X509Certificate::Content& content = *certificate.content;
    std::call_once(content.completing, [&] {
        if (content.whole)
            return;
        const Bytes der = openssl::toDer<i2d_X509>(fields);
        content.whole = openssl::fromDer<openssl::X509Ptr, d2i_X509>(der.data(), der.size());
        if (!content.whole)
            openssl::fail<X509CertificateException>("The certificate can't be read.");
    });
    return *content.whole;
}

X509& detail::CertificateAccess::getFields(const X509Certificate& certificate) {
    if (certificate.empty())
        throw X509CertificateException("The certificate is empty.");
    const X509Certificate::Content& content = *certificate.content;
    return content.fields ? *content.fields : *content.whole;
}

X509Certificate::X509Certificate(const Bytes& bytes) {
    const openssl::ErrorScope scope;
    auto read = std::make_shared<Content>();
    read->fields = openssl::fromDer<openssl::X509Ptr, readFields>(bytes.data(), bytes.size());
    if (!read->fields)
        read->whole = readPem(bytes);
    content = std::move(read);
}

std::size_t X509Certificate::getKeySize() const {
    if (empty())
        return 0;
    const openssl::ErrorScope scope;
    const EVP_PKEY* key = X509_get0_pubkey(&CertificateAccess::get(*this));
    if (!key)
        return 0;
    const int bits = EVP_PKEY_get_bits(key);
    return static_cast<std::size_t>(EVP_PKEY_is_a(key, "RSA") ? (bits + 7) / 8 * 8 : bits);
}

Bytes X509Certificate::getModulus() const {
    return numberOfKey(*this, OSSL_PKEY_PARAM_RSA_N);
}

Bytes X509Certificate::getPublicExponent() const {
    return numberOfKey(*this, OSSL_PKEY_PARAM_RSA_E);
}

Bytes X509Certificate::getPublicKey() const {
    const openssl::ErrorScope scope;
    Bytes der = openssl::toDer<i2d_X509_PUBKEY>(*X509_get_X509_PUBKEY(&CertificateAccess::getFields(*this)));
    if (der.empty())
        openssl::fail<X509CertificateException>("The certificate's key can't be encoded.");
    return der;
}

bool X509Certificate::isValidForDigitalSigning() const {
    if (empty())
        return false;
    const openssl::ErrorScope scope;
    // All bits are set if the extension is absent, none if the extensions can't be read.
    const auto usage = X509_get_key_usage(&CertificateAccess::get(*this));
    return (usage & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) != 0;
}

std::string X509Certificate::getAsString() const {
    const std::u16string text = crypto::utils::base64Encode(getAsByteArray());
    return std::string(text.begin(), text.end());
}

Bytes X509Certificate::getAsByteArray() const {
    const openssl::ErrorScope scope;
    Bytes der = openssl::toDer<i2d_X509>(CertificateAccess::getFields(*this));
    if (der.empty())
        openssl::fail<X509CertificateException>("The certificate can't be encoded.");
    return der;
}

std::string X509Certificate::getSHA256Fingerprint() const {
    const openssl::ErrorScope scope;
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (!X509_digest(&CertificateAccess::get(*this), EVP_sha256(), digest, &size))
        openssl::fail<X509CertificateException>("The fingerprint can't be computed.");
    std::string text;
    for (unsigned int index = 0; index < size; ++index) {
        text += "0123456789abcdef"[digest[index] >> 4];
        text += "0123456789abcdef"[digest[index] & 15];
    }
    return text;
}

std::string X509Certificate::getSubject() const {
    const openssl::ErrorScope scope;
    return detail::toText(*X509_get_subject_name(&CertificateAccess::getFields(*this)));
}

X509Certificate::Validity X509Certificate::getValidity() const {
    const openssl::ErrorScope scope;
    const X509& certificate = CertificateAccess::getFields(*this);
    return {toText(X509_get0_notBefore(&certificate)), toText(X509_get0_notAfter(&certificate))};
}

std::string X509Certificate::getIssuer() const {
    const openssl::ErrorScope scope;
    return detail::toText(*X509_get_issuer_name(&CertificateAccess::getFields(*this)));
}

std::string X509Certificate::getSerialNumber() const {
    const openssl::ErrorScope scope;
    const openssl::BnPtr number(
        ASN1_INTEGER_to_BN(X509_get0_serialNumber(&CertificateAccess::getFields(*this)), nullptr));
    const std::unique_ptr<char, openssl::Deleter<freeText>> digits(number ? BN_bn2dec(number.get())
                                                                          : nullptr);
    if (!digits)
        openssl::fail<X509CertificateException>("The serial number of a certificate can't be read.");
    return digits.get();
}

} // namespace bedrock::certificates
