#include "KeyUsages.hpp"

#include <openssl/core_names.h>

#include <algorithm>
#include <iterator>

namespace bedrock::certificates::detail {

namespace {

struct UsagesDeleter {
    void operator()(EXTENDED_KEY_USAGE* usages) const noexcept {
        sk_ASN1_OBJECT_pop_free(usages, ASN1_OBJECT_free);
    }
};

/// The extended key usages that allow signing documents, one bit each: code signing, e-mail protection, and document signing by
/// the number of RFC 9336 and by an older one.
constexpr const char* SigningUsages[] = {"1.3.6.1.5.5.7.3.3", "1.3.6.1.5.5.7.3.4", "1.3.6.1.5.5.7.3.36",
                                         "1.3.6.1.4.1.311.10.3.12"};
constexpr unsigned AllSigningUsages = 15;

unsigned signingUsageOf(const ASN1_OBJECT& usage) {
    if (OBJ_obj2nid(&usage) == NID_anyExtendedKeyUsage)
        return AllSigningUsages;
    char text[32]; // a usage that doesn't fit isn't one of these
    OBJ_obj2txt(text, sizeof text, &usage, 1);
    const auto* const found =
        std::find(std::begin(SigningUsages), std::end(SigningUsages), std::string(text));
    return found == std::end(SigningUsages) ? 0 : 1U << (found - std::begin(SigningUsages));
}

/// The kinds of signing that a certificate allows to itself and to those below it.
unsigned signingUsagesOf(const X509& certificate) {
    int critical = 0;
    const std::unique_ptr<EXTENDED_KEY_USAGE, UsagesDeleter> usages(static_cast<EXTENDED_KEY_USAGE*>(
        X509_get_ext_d2i(&certificate, NID_ext_key_usage, &critical, nullptr)));
    if (!usages)
        return critical == -1 ? AllSigningUsages : 0; // -1: it is absent; otherwise it can't be read
    unsigned allowed = 0;
    for (int index = 0; index < sk_ASN1_OBJECT_num(usages.get()); ++index)
        allowed |= signingUsageOf(*sk_ASN1_OBJECT_value(usages.get(), index));
    return allowed;
}

/// Whether the exponent makes a key useless: everybody can sign with it, or nobody.
bool isExponentTrivial(const EVP_PKEY* key) {
    const openssl::BnPtr exponent =
        key && EVP_PKEY_is_a(key, "RSA") ? openssl::getNumber(*key, OSSL_PKEY_PARAM_RSA_E) : nullptr;
    return exponent && (BN_is_one(exponent.get()) || !BN_is_odd(exponent.get()));
}

/// Why the certificate itself can't sign.
std::string objectionTo(X509& certificate, bool allowsOtherKeys) {
    const EVP_PKEY* key = X509_get0_pubkey(&certificate);
    if (!allowsOtherKeys && key && EVP_PKEY_is_a(key, "RSA-PSS"))
        return "the certificate's key is for RSA-PSS, which isn't supported";
    if (!key || (!allowsOtherKeys && !EVP_PKEY_is_a(key, "RSA")))
        return "the certificate's key isn't an RSA key";
    // All bits are set if the extension is absent, none if the extensions can't be read.
    if ((X509_get_key_usage(&certificate) & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) == 0)
        return "the certificate isn't there for signing";
    return {};
}

} // namespace

UsageObjection findUsageObjection(STACK_OF(X509) * chain, bool allowsOtherKeys) {
    std::string reason = objectionTo(*sk_X509_value(chain, 0), allowsOtherKeys);
    if (!reason.empty())
        return {0, std::move(reason)};
    unsigned allowed = AllSigningUsages;
    for (int depth = 0; depth < sk_X509_num(chain); ++depth) {
        if (isExponentTrivial(X509_get0_pubkey(sk_X509_value(chain, depth))))
            return {depth, "the key's public exponent is 1 or even"};
        allowed &= signingUsagesOf(*sk_X509_value(chain, depth));
        if (allowed == 0)
            return {depth, depth == 0 ? "the certificate isn't there for signing"
                                      : "an issuer is limited to other usages than signing"};
    }
    return {};
}

} // namespace bedrock::certificates::detail
