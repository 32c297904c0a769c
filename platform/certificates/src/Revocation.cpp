#include "Revocation.hpp"

#include "CertificateAccess.hpp"
#include "CheckTime.hpp"
#include "Strength.hpp"

#include <algorithm>
#include <ctime>
#include <memory>
#include <new>

namespace bedrock::certificates::detail {

namespace {

using ReasonPtr = std::unique_ptr<ASN1_ENUMERATED, openssl::Deleter<ASN1_ENUMERATED_free>>;
using DatePtr = std::unique_ptr<ASN1_GENERALIZEDTIME, openssl::Deleter<ASN1_GENERALIZEDTIME_free>>;

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

/// Whether the reason of a revocation is that the certificate was replaced or isn't used any more.
bool isOutOfUse(const X509_REVOKED& entry) {
    const ReasonPtr reason(
        static_cast<ASN1_ENUMERATED*>(X509_REVOKED_get_ext_d2i(&entry, NID_crl_reason, nullptr, nullptr)));
    const long value = reason ? ASN1_ENUMERATED_get(reason.get()) : CRL_REASON_UNSPECIFIED;
    return value == CRL_REASON_AFFILIATION_CHANGED || value == CRL_REASON_SUPERSEDED ||
           value == CRL_REASON_CESSATION_OF_OPERATION;
}

bool isLater(const ASN1_TIME* time, std::time_t than) {
    return X509_cmp_time(time, &than) == 1;
}

/// Whether what was signed at the proven time of the check was signed before the certificate was revoked.
bool isRevokedLater(const X509_REVOKED& entry, const CertificateValidationOptions& options) {
    if (!options.isCheckTimeProven() || !options.getCheckTime() || !isOutOfUse(entry))
        return false;
    const std::time_t time = toSystemTime(*options.getCheckTime());
    int count = 0;
    const DatePtr invalidSince(static_cast<ASN1_GENERALIZEDTIME*>(
        X509_REVOKED_get_ext_d2i(&entry, NID_invalidity_date, &count, nullptr)));
    constexpr int ABSENT = -1;
    return isLater(X509_REVOKED_get0_revocationDate(&entry), time) &&
           (invalidSince ? isLater(invalidSince.get(), time) : count == ABSENT);
}

/// Whether a list that the issuer has signed revokes the certificate.
bool isRevoked(X509* certificate, X509* issuer, const CertificateValidationOptions& options) {
    const auto& lists = options.getRevocationLists();
    return std::any_of(lists.begin(), lists.end(), [&](const auto& entry) {
        X509_CRL* list = entry->list.get();
        X509_REVOKED* found = nullptr;
        return isOfIssuerOf(certificate, *list) && X509_CRL_get0_by_cert(list, &found, certificate) == 1 &&
               X509_CRL_verify(list, X509_get0_pubkey(issuer)) == 1 && !isRevokedLater(*found, options);
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
/// be covered. Whether one is revoked at a proven time, `findRevoked` says.
int judgeRevocation(int ok, X509_STORE_CTX* context) {
    if (ok)
        return ok;
    const int error = X509_STORE_CTX_get_error(context);
    const auto& options =
        *static_cast<const CertificateValidationOptions*>(X509_STORE_CTX_get_app_data(context));
    if (error == X509_V_ERR_CRL_NOT_YET_VALID ||
        (error == X509_V_ERR_CERT_REVOKED && options.isCheckTimeProven()) ||
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
        if (isRevoked(certificate, sk_X509_value(chain, std::min(index + 1, count - 1)), options))
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
