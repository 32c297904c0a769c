#include "Revocation.hpp"

#include "CertificateAccess.hpp"
#include "Strength.hpp"

#include <algorithm>
#include <new>

namespace bedrock::certificates::detail {

namespace {

bool isDelta(const X509_CRL& list) {
    return X509_CRL_get_ext_by_NID(&list, NID_delta_crl, -1) >= 0;
}

/// Whether the error says that no list covers a certificate.
bool isUncovered(int error) {
    switch (error) {
    case X509_V_ERR_UNABLE_TO_GET_CRL:
    case X509_V_ERR_UNABLE_TO_GET_CRL_ISSUER:
    case X509_V_ERR_CRL_HAS_EXPIRED:
    case X509_V_ERR_DIFFERENT_CRL_SCOPE:
    case X509_V_ERR_UNHANDLED_CRITICAL_CRL_EXTENSION:
        return true;
    default:
        return false;
    }
}

bool isOfIssuerOf(X509* certificate, const X509_CRL& list) {
    return X509_NAME_cmp(X509_CRL_get_issuer(&list), X509_get_issuer_name(certificate)) == 0;
}

/// Whether a list that the issuer has signed names the certificate.
bool isNamed(X509* certificate, X509* issuer, const CertificateValidationOptions& options) {
    const auto& lists = options.getRevocationLists();
    return std::any_of(lists.begin(), lists.end(), [&](const auto& entry) {
        X509_CRL* list = entry->list.get();
        X509_REVOKED* found = nullptr;
        return isOfIssuerOf(certificate, *list) && X509_CRL_get0_by_cert(list, &found, certificate) == 1 &&
               X509_CRL_verify(list, X509_get0_pubkey(issuer)) == 1;
    });
}

} // namespace

openssl::CrlStackPtr coveringLists(const CertificateValidationOptions& options, CoveringLists lists) {
    openssl::CrlStackPtr covering = openssl::made(openssl::CrlStackPtr(sk_X509_CRL_new_null()));
    for (const auto& entry : options.getRevocationLists()) {
        X509_CRL& list = *entry->list;
        // OpenSSL would take a delta list for a complete one.
        if (isDelta(list) || (lists == CoveringLists::Strong && isWeak(list)))
            continue;
        if (!sk_X509_CRL_push(covering.get(), &list))
            throw std::bad_alloc();
    }
    return covering;
}

/// A list that is newer than the time of the check knows more, not less. Only the validated certificate itself must
/// be covered.
int judgeRevocation(int ok, X509_STORE_CTX* context) {
    if (ok)
        return ok;
    const int error = X509_STORE_CTX_get_error(context);
    if (error == X509_V_ERR_CRL_NOT_YET_VALID ||
        (isUncovered(error) && X509_STORE_CTX_get_error_depth(context) > 0)) {
        X509_STORE_CTX_set_error(context, X509_V_OK);
        return 1;
    }
    return 0;
}

/// OpenSSL looks into one list of each issuer, the one that fits the time of the check best. But any list revokes a
/// certificate. As far as is known, the last certificate of the chain can only have been issued by itself.
X509* findRevoked(STACK_OF(X509) * chain, const CertificateValidationOptions& options) {
    const int count = sk_X509_num(chain);
    for (int index = 0; index < count; ++index) {
        X509* certificate = sk_X509_value(chain, index);
        if (isNamed(certificate, sk_X509_value(chain, std::min(index + 1, count - 1)), options))
            return certificate;
    }
    return nullptr;
}

std::vector<WeakAlgorithm> findWeakLists(STACK_OF(X509) * chain,
                                         const CertificateValidationOptions& options) {
    std::vector<WeakAlgorithm> found;
    for (const auto& entry : options.getRevocationLists()) {
        const X509_CRL& list = *entry->list;
        bool isOfChain = false;
        for (int index = 0; index < sk_X509_num(chain); ++index)
            isOfChain = isOfChain || isOfIssuerOf(sk_X509_value(chain, index), list);
        if (isOfChain && isWeak(list))
            found.push_back(weaknessOf(list));
    }
    return found;
}

} // namespace bedrock::certificates::detail
