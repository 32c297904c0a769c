#include "TestCertificates.hpp"

#include <openssl/conf.h>
#include <openssl/core_names.h>
#include <openssl/params.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <map>
#include <stdexcept>

namespace opc::test {

namespace {

using Bytes = std::vector<unsigned char>;

template <typename T>
T require(T result) {
    if (!result)
        throw std::runtime_error("a certificate for a test can't be made");
    return result;
}

std::shared_ptr<EVP_PKEY> makeKey(std::size_t rsaBits) {
    static std::map<std::size_t, std::shared_ptr<EVP_PKEY>> rsaKeys;
    if (rsaBits == 0)
        return {require(EVP_EC_gen("P-256")), EVP_PKEY_free};
    auto& key = rsaKeys[rsaBits];
    if (!key)
        key.reset(require(EVP_RSA_gen(rsaBits)), EVP_PKEY_free);
    return key;
}

std::shared_ptr<ASN1_TIME> timeOf(const std::string& text) {
    const std::shared_ptr<ASN1_TIME> time(require(ASN1_TIME_new()), ASN1_TIME_free);
    require(ASN1_TIME_set_string_X509(time.get(), text.c_str()));
    return time;
}

/// @tparam Add  adds an extension to a certificate or to a list
template <auto Add, typename T>
void addExtension(T& target, X509V3_CTX& context, const std::string& name, const std::string& value) {
    if (value.empty())
        return;
    const std::shared_ptr<CONF> none(require(NCONF_new(nullptr)), NCONF_free); // some kinds need one
    X509V3_set_nconf(&context, none.get());
    const std::shared_ptr<X509_EXTENSION> extension(
        require(X509V3_EXT_nconf(none.get(), &context, name.c_str(), value.c_str())), X509_EXTENSION_free);
    require(Add(&target, extension.get(), -1));
}

template <auto Encode, typename T>
Bytes toDer(T& object) {
    Bytes der(static_cast<std::size_t>(require(Encode(&object, nullptr))));
    unsigned char* end = der.data();
    Encode(&object, &end);
    return der;
}

} // namespace

Bytes Identity::getPrivateKey() const {
    const std::shared_ptr<PKCS8_PRIV_KEY_INFO> structure(require(EVP_PKEY2PKCS8(key.get())),
                                                         PKCS8_PRIV_KEY_INFO_free);
    return toDer<i2d_PKCS8_PRIV_KEY_INFO>(*structure);
}

Identity makeIdentity(const CertificateRecipe& recipe) {
    static long serial = 1;
    Identity made;
    made.key = recipe.key ? recipe.key : makeKey(recipe.rsaBits);
    made.content.reset(require(X509_new()), X509_free);
    X509& content = *made.content;
    require(X509_set_version(&content, X509_VERSION_3));
    require(ASN1_INTEGER_set(X509_get_serialNumber(&content), serial++));
    require(X509_set1_notBefore(&content, timeOf(recipe.notBefore).get()));
    require(X509_set1_notAfter(&content, timeOf(recipe.notAfter).get()));
    require(X509_set_pubkey(&content, made.key.get()));
    X509_NAME* name = X509_get_subject_name(&content);
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(recipe.subject.c_str()), -1, -1,
                                       0));
    X509& issuer = recipe.issuer ? *recipe.issuer->content : content;
    require(X509_set_issuer_name(&content, X509_get_subject_name(&issuer)));
    X509V3_CTX context;
    X509V3_set_ctx(&context, &issuer, &content, nullptr, nullptr, 0);
    Extensions extensions{{"basicConstraints", recipe.basicConstraints},
                          {"keyUsage", recipe.keyUsage},
                          {"extendedKeyUsage", recipe.extendedKeyUsage}};
    extensions.insert(extensions.end(), recipe.furtherExtensions.begin(), recipe.furtherExtensions.end());
    for (const auto& [extension, value] : extensions)
        addExtension<X509_add_ext>(content, context, extension, value);
    require(X509_sign(&content, recipe.issuer ? recipe.issuer->key.get() : made.key.get(), recipe.digest));
    made.certificate = bedrock::certificates::X509Certificate(toDer<i2d_X509>(content));
    return made;
}

Identity makeSigner(const Identity* issuer, const std::function<void(CertificateRecipe&)>& change) {
    CertificateRecipe recipe;
    recipe.issuer = issuer;
    if (change)
        change(recipe);
    return makeIdentity(recipe);
}

Identity makeIssuer(const std::string& subject, const Identity* issuer) {
    return makeSigner(issuer, [&subject](CertificateRecipe& recipe) {
        recipe.subject = subject;
        recipe.rsaBits = 0;
        recipe.basicConstraints = "critical,CA:TRUE";
        recipe.keyUsage = "critical,keyCertSign,cRLSign";
    });
}

std::shared_ptr<EVP_PKEY> makePublicKey(std::size_t modulusSize, Bytes exponent) {
    Bytes modulus(modulusSize, 0xFF); // in any byte order
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_BN(OSSL_PKEY_PARAM_RSA_N, modulus.data(), modulus.size()),
        OSSL_PARAM_construct_BN(OSSL_PKEY_PARAM_RSA_E, exponent.data(), exponent.size()),
        OSSL_PARAM_construct_end()};
    const std::shared_ptr<EVP_PKEY_CTX> context(require(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr)),
                                                EVP_PKEY_CTX_free);
    EVP_PKEY* key = nullptr;
    require(EVP_PKEY_fromdata_init(context.get()) == 1);
    require(EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY,
                              const_cast<OSSL_PARAM*>(parameters)) == 1);
    return {key, EVP_PKEY_free};
}

std::shared_ptr<EVP_PKEY> makePssKey() {
    const std::shared_ptr<EVP_PKEY_CTX> context(
        require(EVP_PKEY_CTX_new_from_name(nullptr, "RSA-PSS", nullptr)), EVP_PKEY_CTX_free);
    EVP_PKEY* key = nullptr;
    require(EVP_PKEY_keygen_init(context.get()) == 1);
    require(EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), 2048) == 1);
    require(EVP_PKEY_generate(context.get(), &key) == 1);
    return {key, EVP_PKEY_free};
}

Bytes makeRevocationList(const Identity& issuer, const std::vector<const Identity*>& revoked,
                         const std::string& lastUpdate, const std::string& nextUpdate,
                         const Extensions& extensions, const EVP_MD* digest, const Extensions& ofEntries) {
    const std::shared_ptr<X509_CRL> list(require(X509_CRL_new()), X509_CRL_free);
    require(X509_CRL_set_version(list.get(), X509_CRL_VERSION_2));
    require(X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(issuer.content.get())));
    require(X509_CRL_set1_lastUpdate(list.get(), timeOf(lastUpdate).get()));
    require(X509_CRL_set1_nextUpdate(list.get(), timeOf(nextUpdate).get()));
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer.content.get(), nullptr, nullptr, list.get(), 0);
    for (const Identity* identity : revoked) {
        X509_REVOKED* entry = require(X509_REVOKED_new());
        require(X509_REVOKED_set_serialNumber(entry, X509_get_serialNumber(identity->content.get())));
        require(X509_REVOKED_set_revocationDate(entry, timeOf(lastUpdate).get()));
        for (const auto& [name, value] : ofEntries)
            addExtension<X509_REVOKED_add_ext>(*entry, context, name, value);
        require(X509_CRL_add0_revoked(list.get(), entry));
    }
    for (const auto& [name, value] : extensions)
        addExtension<X509_CRL_add_ext>(*list, context, name, value);
    require(X509_CRL_sort(list.get()));
    require(X509_CRL_sign(list.get(), issuer.key.get(), digest));
    return toDer<i2d_X509_CRL>(*list);
}

} // namespace opc::test
