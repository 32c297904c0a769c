#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>

#include <algorithm>
#include <iterator>

namespace bedrock::certificates {

namespace {

using detail::CertificateAccess;
using Status = CertificateChainStatus;

constexpr int MinimalSecurityBits = 112; // NIST SP 800-57 part 1: what is less is for old documents only

struct UsagesDeleter {
    void operator()(EXTENDED_KEY_USAGE* usages) const noexcept {
        sk_ASN1_OBJECT_pop_free(usages, ASN1_OBJECT_free);
    }
};

Status statusOf(int error) {
    switch (error) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return Status::Expired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return Status::NotYetValid;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
    case X509_V_ERR_CERT_REJECTED:
        return Status::UnknownIssuer;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        return Status::SelfSigned;
    case X509_V_ERR_INVALID_PURPOSE:
        return Status::WrongPurpose;
    case X509_V_ERR_CERT_REVOKED:
        return Status::Revoked;
    case X509_V_ERR_UNABLE_TO_GET_CRL:
    case X509_V_ERR_UNABLE_TO_GET_CRL_ISSUER:
    case X509_V_ERR_UNABLE_TO_DECRYPT_CRL_SIGNATURE:
    case X509_V_ERR_CRL_SIGNATURE_FAILURE:
    case X509_V_ERR_CRL_HAS_EXPIRED:
    case X509_V_ERR_ERROR_IN_CRL_LAST_UPDATE_FIELD:
    case X509_V_ERR_ERROR_IN_CRL_NEXT_UPDATE_FIELD:
    case X509_V_ERR_KEYUSAGE_NO_CRL_SIGN:
    case X509_V_ERR_UNHANDLED_CRITICAL_CRL_EXTENSION:
    case X509_V_ERR_DIFFERENT_CRL_SCOPE:
    case X509_V_ERR_CRL_PATH_VALIDATION_ERROR:
        return Status::RevocationUnknown;
    case X509_V_ERR_CERT_SIGNATURE_FAILURE:
    case X509_V_ERR_UNABLE_TO_DECRYPT_CERT_SIGNATURE:
    case X509_V_ERR_UNABLE_TO_DECODE_ISSUER_PUBLIC_KEY:
        return Status::BadSignature;
    default:
        return Status::InvalidChain;
    }
}

/// A list that is newer than the time of the check knows more, not less; and only the validated certificate
/// itself must be covered, by a list that hasn't run out.
int judgeRevocation(int ok, X509_STORE_CTX* context) {
    if (ok)
        return ok;
    const int error = X509_STORE_CTX_get_error(context);
    const bool isUncovered = error == X509_V_ERR_UNABLE_TO_GET_CRL ||
                             error == X509_V_ERR_UNABLE_TO_GET_CRL_ISSUER ||
                             error == X509_V_ERR_CRL_HAS_EXPIRED;
    if (error == X509_V_ERR_CRL_NOT_YET_VALID ||
        (isUncovered && X509_STORE_CTX_get_error_depth(context) > 0)) {
        X509_STORE_CTX_set_error(context, X509_V_OK);
        return 1;
    }
    return 0;
}

openssl::StorePtr makeStore(const TrustStore& trustStore, const CertificateValidationOptions& options) {
    openssl::StorePtr store = openssl::made(openssl::StorePtr(X509_STORE_new()));
    for (const X509Certificate& certificate : trustStore.getCertificates()) {
        if (!X509_STORE_add_cert(store.get(), &CertificateAccess::get(certificate)))
            openssl::fail<X509CertificateException>("A certificate of the trust store can't be used.");
    }
    if (trustStore.getSystemUsage() && !X509_STORE_set_default_paths(store.get()))
        openssl::fail<CertificateException>("The system's certificates can't be used.");
    for (const auto& list : options.getRevocationLists()) {
        if (!X509_STORE_add_crl(store.get(), list->list.get()))
            openssl::fail<CertificateException>("A revocation list can't be used.");
    }
    return store;
}

void setParameters(X509_VERIFY_PARAM& parameters, const TrustStore& trustStore,
                   const CertificateValidationOptions& options) {
    unsigned long flags = X509_V_FLAG_PARTIAL_CHAIN;
    if (options.isUsingRevocationLists())
        flags |= X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL;
    X509_VERIFY_PARAM_set_flags(&parameters, flags);
    X509_VERIFY_PARAM_set_auth_level(&parameters, 0); // strength is judged here, key and digest apart
    if (trustStore.getSystemUsage() == TrustStore::Usage::Signing)
        X509_VERIFY_PARAM_set_trust(&parameters, X509_TRUST_OBJECT_SIGN);
    if (const auto time = options.getCheckTime())
        X509_VERIFY_PARAM_set_time(&parameters, std::chrono::system_clock::to_time_t(*time));
}

bool isIrrelevantForSigning(int usage) {
    constexpr int irrelevant[] = {NID_server_auth, NID_client_auth, NID_time_stamp, NID_OCSP_sign};
    return std::find(std::begin(irrelevant), std::end(irrelevant), usage) != std::end(irrelevant);
}

bool isThereForSigning(const X509Certificate& certificate) {
    if (!certificate.isValidForDigitalSigning())
        return false;
    X509& content = CertificateAccess::get(certificate);
    const std::unique_ptr<EXTENDED_KEY_USAGE, UsagesDeleter> usages(
        static_cast<EXTENDED_KEY_USAGE*>(X509_get_ext_d2i(&content, NID_ext_key_usage, nullptr, nullptr)));
    if (!usages) // not there; what can't be read has failed already
        return true;
    for (int index = 0; index < sk_ASN1_OBJECT_num(usages.get()); ++index) {
        if (!isIrrelevantForSigning(OBJ_obj2nid(sk_ASN1_OBJECT_value(usages.get(), index))))
            return true;
    }
    return false;
}

bool isKeyWeak(const X509& certificate) {
    const EVP_PKEY* key = X509_get0_pubkey(&certificate);
    return !key || EVP_PKEY_get_security_bits(key) < MinimalSecurityBits;
}

bool isDigestWeak(X509& certificate) {
    int securityBits = 0;
    return !X509_get_signature_info(&certificate, nullptr, nullptr, &securityBits, nullptr) ||
           securityBits < MinimalSecurityBits;
}

CertificateValidationResults refusal(Status status, const std::string& reason, X509* certificate) {
    std::string text = reason;
    if (certificate && X509_up_ref(certificate))
        text += ": " + CertificateAccess::make(openssl::X509Ptr(certificate)).getSubject();
    return {status, text};
}

/// Whether a list that the issuer signed names the certificate.
bool isNamed(X509* certificate, X509* issuer, const CertificateValidationOptions& options) {
    for (const auto& entry : options.getRevocationLists()) {
        X509_CRL* list = entry->list.get();
        X509_REVOKED* found = nullptr;
        if (X509_NAME_cmp(X509_CRL_get_issuer(list), X509_get_issuer_name(certificate)) == 0 &&
            X509_CRL_get0_by_cert(list, &found, certificate) == 1 &&
            X509_CRL_verify(list, X509_get0_pubkey(issuer)) == 1)
            return true;
    }
    return false;
}

/// OpenSSL looks into one list of each issuer, the one that fits the time of the check best. A certificate is
/// revoked by any of them.
/// @param chain  the verified chain; only by itself can its last certificate have been issued as far as is known
CertificateValidationResults judgeAllLists(STACK_OF(X509) * chain,
                                           const CertificateValidationOptions& options) {
    const int count = sk_X509_num(chain);
    for (int index = 0; index < count; ++index) {
        X509* certificate = sk_X509_value(chain, index);
        if (isNamed(certificate, sk_X509_value(chain, std::min(index + 1, count - 1)), options))
            return refusal(Status::Revoked, X509_verify_cert_error_string(X509_V_ERR_CERT_REVOKED),
                           certificate);
    }
    return {Status::Good, std::string()};
}

/// @param chain  the verified chain; the last certificate is that of the store, whose own signature doesn't
/// count
CertificateValidationResults judgeStrength(STACK_OF(X509) * chain,
                                           const CertificateValidationOptions& options) {
    const int count = sk_X509_num(chain);
    for (int index = 0; index < count; ++index) {
        X509* certificate = sk_X509_value(chain, index);
        if (!options.isAcceptingWeakKeys() && isKeyWeak(*certificate))
            return refusal(Status::WeakAlgorithm, "the key is too weak", certificate);
        if (!options.isAcceptingWeakDigests() && index + 1 < count && isDigestWeak(*certificate))
            return refusal(Status::WeakAlgorithm, "the digest of the certificate's signature is too weak",
                           certificate);
    }
    return {Status::Good, std::string()};
}

} // namespace

CertificateValidationResults X509Certificate::validateCertificate(const X509CertificateChain& chain,
                                                                  const CertificateValidationOptions& options,
                                                                  const TrustStore& trustStore) const {
    const openssl::ErrorScope scope;
    X509& certificate = CertificateAccess::get(*this);
    const openssl::StorePtr store = makeStore(trustStore, options);
    const openssl::X509StackPtr others = openssl::made(openssl::X509StackPtr(sk_X509_new_null()));
    for (const X509Certificate& other : chain.getCertificates()) {
        if (!X509_add_cert(others.get(), &CertificateAccess::get(other), X509_ADD_FLAG_UP_REF))
            throw std::bad_alloc();
    }
    const openssl::StoreCtxPtr context = openssl::made(openssl::StoreCtxPtr(X509_STORE_CTX_new()));
    if (!X509_STORE_CTX_init(context.get(), store.get(), &certificate, others.get()))
        openssl::fail<X509CertificateException>("The certificate can't be validated.");
    setParameters(*X509_STORE_CTX_get0_param(context.get()), trustStore, options);
    X509_STORE_CTX_set_verify_cb(context.get(), judgeRevocation);

    if (X509_verify_cert(context.get()) != 1) {
        const int error = X509_STORE_CTX_get_error(context.get());
        if (error == X509_V_ERR_OUT_OF_MEM)
            throw std::bad_alloc();
        return refusal(statusOf(error), X509_verify_cert_error_string(error),
                       X509_STORE_CTX_get_current_cert(context.get()));
    }
    STACK_OF(X509)* verified = X509_STORE_CTX_get0_chain(context.get());
    if (options.isUsingRevocationLists()) {
        CertificateValidationResults results = judgeAllLists(verified, options);
        if (results.getCertificateChainStatus() != Status::Good)
            return results;
    }
    if (!isThereForSigning(*this))
        return refusal(Status::WrongPurpose, "the certificate isn't there for signing", &certificate);
    return judgeStrength(verified, options);
}

} // namespace bedrock::certificates
