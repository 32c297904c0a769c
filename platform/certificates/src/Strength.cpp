#include "Strength.hpp"

#include "CertificateAccess.hpp"

#include <openssl/rsa.h>

#include <string>

namespace bedrock::certificates::detail {

namespace {

constexpr int MinimalSecurityBits = 112; // NIST SP 800-57 part 1: less is acceptable only for old documents

using Place = WeakAlgorithm::Place;

std::string nameOfDigest(int digest) {
    return digest == NID_sha1 ? "SHA-1" : digest == NID_undef ? "an unknown digest" : OBJ_nid2sn(digest);
}

std::string nameOfKey(const EVP_PKEY* key) {
    if (!key)
        return "an unknown key";
    return std::string(EVP_PKEY_get0_type_name(key)) + " " + std::to_string(EVP_PKEY_get_bits(key));
}

bool isKeyWeak(const EVP_PKEY* key) {
    return !key || EVP_PKEY_get_security_bits(key) < MinimalSecurityBits;
}

/// For RSA-PSS the digest is in the parameters of the signature; it is SHA-1 if they don't name one (RFC 4055 section
/// 3.1).
int digestOfPss(const X509_ALGOR& algorithm) {
    int type = 0;
    const void* value = nullptr;
    X509_ALGOR_get0(nullptr, &type, &value, &algorithm);
    if (type != V_ASN1_SEQUENCE)
        return NID_undef;
    const auto* const text = static_cast<const ASN1_STRING*>(value);
    const auto parameters =
        openssl::fromDer<std::unique_ptr<RSA_PSS_PARAMS, openssl::Deleter<RSA_PSS_PARAMS_free>>,
                         d2i_RSA_PSS_PARAMS>(ASN1_STRING_get0_data(text),
                                             static_cast<std::size_t>(ASN1_STRING_length(text)));
    if (!parameters)
        return NID_undef;
    return parameters->hashAlgorithm ? OBJ_obj2nid(parameters->hashAlgorithm->algorithm) : NID_sha1;
}

/// The digest of a list's signature; `NID_undef` if it is unknown or belongs to the algorithm.
int digestOf(const X509_CRL& list) {
    const X509_ALGOR* algorithm = nullptr;
    X509_CRL_get0_signature(&list, nullptr, &algorithm);
    const int method = X509_CRL_get_signature_nid(&list);
    if (method == NID_rsassaPss)
        return digestOfPss(*algorithm);
    int digest = NID_undef;
    OBJ_find_sigid_algs(method, &digest, nullptr);
    return digest;
}

} // namespace

std::vector<WeakCertificate> findWeakCertificates(STACK_OF(X509) * chain) {
    std::vector<WeakCertificate> found;
    const int count = sk_X509_num(chain);
    for (int depth = 0; depth < count; ++depth) {
        X509* certificate = sk_X509_value(chain, depth);
        const std::string subject = toText(*X509_get_subject_name(certificate));
        const EVP_PKEY* key = X509_get0_pubkey(certificate);
        if (isKeyWeak(key))
            found.push_back({{Place::Key, nameOfKey(key), subject}, depth});
        int digest = NID_undef;
        int securityBits = 0;
        if (depth + 1 < count &&
            (!X509_get_signature_info(certificate, &digest, nullptr, &securityBits, nullptr) ||
             securityBits < MinimalSecurityBits))
            found.push_back({{Place::CertificateSignature, nameOfDigest(digest), subject}, depth});
    }
    return found;
}

bool isWeak(const X509_CRL& list) {
    const int method = X509_CRL_get_signature_nid(&list);
    if (method == NID_ED25519 || method == NID_ED448)
        return false;
    const EVP_MD* digest = EVP_get_digestbynid(digestOf(list));
    return !digest || EVP_MD_get_size(digest) * 8 / 2 < MinimalSecurityBits; // collisions break it
}

WeakAlgorithm weaknessOf(const X509_CRL& list) {
    return {Place::RevocationList, nameOfDigest(digestOf(list)), toText(*X509_CRL_get_issuer(&list))};
}

} // namespace bedrock::certificates::detail
