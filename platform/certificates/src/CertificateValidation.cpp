#include "CertificateAccess.hpp"
#include "CheckTime.hpp"
#include "KeyUsages.hpp"
#include "Revocation.hpp"
#include "Strength.hpp"
#include "SystemStore.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>

#include <algorithm>
#include <iterator>

namespace bedrock::certificates {

namespace {

using detail::CertificateAccess;
using detail::CoveringLists;
using Status = CertificateChainStatus;

constexpr int MaximalAlternatives = 20; // each costs as much as the first attempt

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

openssl::StorePtr makeStore(const TrustStore& trustStore) {
    if (trustStore.getSystemUsage() && trustStore.getCertificates().empty())
        return detail::systemStore();
    openssl::StorePtr store = openssl::made(openssl::StorePtr(X509_STORE_new()));
    for (const X509Certificate& certificate : trustStore.getCertificates()) {
        if (!X509_STORE_add_cert(store.get(), &CertificateAccess::get(certificate)))
            openssl::fail<X509CertificateException>("A certificate of the trust store can't be used.");
    }
    if (trustStore.getSystemUsage() && !X509_STORE_set_default_paths(store.get()))
        openssl::fail<CertificateException>("The system's certificates can't be used.");
    return store;
}

void setParameters(X509_VERIFY_PARAM& parameters, const TrustStore& trustStore,
                   const CertificateValidationOptions& options) {
    unsigned long flags = X509_V_FLAG_PARTIAL_CHAIN | X509_V_FLAG_POLICY_CHECK;
    if (options.isUsingRevocationLists())
        flags |= X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL;
    X509_VERIFY_PARAM_set_flags(&parameters, flags);
    // Without an initial set of policies, OpenSSL uses an empty one and not any policy.
    if (!X509_VERIFY_PARAM_add0_policy(&parameters, OBJ_nid2obj(NID_any_policy)))
        throw std::bad_alloc();
    X509_VERIFY_PARAM_set_auth_level(&parameters, 0); // strength is checked here, key and digest separately
    if (trustStore.getSystemUsage() == TrustStore::Usage::Signing)
        X509_VERIFY_PARAM_set_trust(&parameters, X509_TRUST_OBJECT_SIGN);
    detail::setCheckTime(parameters, options);
}

CertificateValidationResults refusal(Status status, const std::string& reason, X509* certificate) {
    return {status,
            certificate ? reason + ": " + detail::toText(*X509_get_subject_name(certificate)) : reason};
}

/// The result of one way to build a chain.
struct Attempt {
    CertificateValidationResults results;
    X509* culprit = nullptr; ///< the certificate that another way must leave out; null if there is none
};

/// The certificate to blame if a chain fails. If a signature doesn't fit the key of its issuer, that is the issuer:
/// it may only have the name of the right one.
X509* findCulprit(X509_STORE_CTX& context) {
    const int depth = X509_STORE_CTX_get_error_depth(&context);
    const bool isIssuerUntrusted = depth + 1 < X509_STORE_CTX_get_num_untrusted(&context);
    const bool isIssuerInQuestion =
        X509_STORE_CTX_get_error(&context) == X509_V_ERR_CERT_SIGNATURE_FAILURE && isIssuerUntrusted;
    const int index = isIssuerInQuestion ? depth + 1 : depth;
    return index > 0 ? sk_X509_value(X509_STORE_CTX_get0_chain(&context), index) : nullptr;
}

Attempt judgeFailure(X509_STORE_CTX& context) {
    const int error = X509_STORE_CTX_get_error(&context);
    if (error == X509_V_ERR_OUT_OF_MEM)
        throw std::bad_alloc();
    const Status status = statusOf(error);
    const bool isFinal = status == Status::Revoked || status == Status::RevocationUnknown;
    return {refusal(status, X509_verify_cert_error_string(error), X509_STORE_CTX_get_current_cert(&context)),
            isFinal ? nullptr : findCulprit(context)};
}

bool isAccepted(const WeakAlgorithm& weak, const CertificateValidationOptions& options) {
    return weak.place == WeakAlgorithm::Place::Key ? options.isAcceptingWeakKeys()
                                                   : options.isAcceptingWeakDigests();
}

Attempt judgeStrength(STACK_OF(X509) * chain, const CertificateValidationOptions& options,
                      const std::vector<WeakAlgorithm>& weakLists) {
    const std::vector<detail::WeakCertificate> found = detail::findWeakCertificates(chain);
    const auto refused = std::find_if(found.begin(), found.end(), [&options](const auto& weak) {
        return !isAccepted(weak.algorithm, options);
    });
    std::vector<WeakAlgorithm> all;
    std::transform(found.begin(), found.end(), std::back_inserter(all),
                   [](const detail::WeakCertificate& weak) { return weak.algorithm; });
    all.insert(all.end(), weakLists.begin(), weakLists.end());
    if (refused == found.end())
        return {{Status::Good, std::string(), std::move(all)}};
    const std::string what = refused->algorithm.place == WeakAlgorithm::Place::Key
                                 ? "the key is too weak: "
                                 : "the digest of the certificate's signature is too weak: ";
    return {{Status::WeakAlgorithm, what + refused->algorithm.name, std::move(all)},
            refused->depth > 0 ? sk_X509_value(chain, refused->depth) : nullptr};
}

/// Checks a chain that leads to a certificate of the store.
Attempt judgeChain(STACK_OF(X509) * chain, const CertificateValidationOptions& options, CoveringLists lists) {
    if (options.isUsingRevocationLists()) {
        if (X509* revoked = detail::findRevoked(chain, options))
            return {
                refusal(Status::Revoked, X509_verify_cert_error_string(X509_V_ERR_CERT_REVOKED), revoked)};
    }
    const detail::UsageObjection objection =
        detail::findUsageObjection(chain, options.isAcceptingOtherKeys());
    if (!objection.reason.empty()) {
        X509* certificate = sk_X509_value(chain, objection.depth);
        return {refusal(Status::WrongPurpose, objection.reason, certificate),
                objection.depth > 0 ? certificate : nullptr};
    }
    const bool weakListsCount = options.isUsingRevocationLists() && lists == CoveringLists::All;
    return judgeStrength(chain, options,
                         weakListsCount ? detail::findWeakLists(chain, options)
                                        : std::vector<WeakAlgorithm>());
}

/// A certificate to validate, and the certificates to build its chain with.
class Validation {
public:
    Validation(X509& certificate, const X509CertificateChain& chain,
               const CertificateValidationOptions& options, const TrustStore& trustStore)
        : certificate(certificate), others(chain.getCertificates()), options(options),
          trustStore(trustStore) {}

    /// OpenSSL follows only one way through the certificates. If that fails, the others are tried without the
    /// certificate that made it fail. The first failure is the one that is reported.
    CertificateValidationResults run(CoveringLists lists) const {
        const openssl::StorePtr store = makeStore(trustStore);
        const openssl::X509StackPtr untrusted = copyOthers();
        const Attempt first = attempt(*store, untrusted.get(), lists);
        X509* culprit = first.culprit;
        for (int count = 0; count < MaximalAlternatives && drop(culprit, untrusted.get()); ++count) {
            const Attempt next = attempt(*store, untrusted.get(), lists);
            if (next.results.getCertificateChainStatus() == Status::Good)
                return next.results;
            culprit = next.culprit;
        }
        return first.results;
    }

private:
    openssl::X509StackPtr copyOthers() const {
        openssl::X509StackPtr copies = openssl::made(openssl::X509StackPtr(sk_X509_new_null()));
        for (const X509Certificate& other : others) {
            if (!X509_add_cert(copies.get(), &CertificateAccess::get(other), X509_ADD_FLAG_UP_REF))
                throw std::bad_alloc();
        }
        return copies;
    }

    static bool drop(X509* culprit, STACK_OF(X509) * untrusted) {
        const openssl::X509Ptr dropped(culprit ? sk_X509_delete_ptr(untrusted, culprit) : nullptr);
        return dropped != nullptr;
    }

    Attempt attempt(X509_STORE& store, STACK_OF(X509) * untrusted, CoveringLists lists) const {
        const openssl::ErrorScope scope;
        const openssl::CrlStackPtr covering = detail::coveringLists(options, lists);
        const openssl::StoreCtxPtr context = openssl::made(openssl::StoreCtxPtr(X509_STORE_CTX_new()));
        if (!X509_STORE_CTX_init(context.get(), &store, &certificate, untrusted))
            openssl::fail<X509CertificateException>("The certificate can't be validated.");
        setParameters(*X509_STORE_CTX_get0_param(context.get()), trustStore, options);
        X509_STORE_CTX_set0_crls(context.get(), covering.get());
        X509_STORE_CTX_set_app_data(context.get(), const_cast<CertificateValidationOptions*>(&options));
        X509_STORE_CTX_set_verify_cb(context.get(), detail::judgeRevocation);
        if (X509_verify_cert(context.get()) != 1)
            return judgeFailure(*context);
        return judgeChain(X509_STORE_CTX_get0_chain(context.get()), options, lists);
    }

    X509& certificate;
    const std::vector<X509Certificate>& others;
    const CertificateValidationOptions& options;
    const TrustStore& trustStore;
};

} // namespace

CertificateValidationResults X509Certificate::validateCertificate(const X509CertificateChain& chain,
                                                                  const CertificateValidationOptions& options,
                                                                  const TrustStore& trustStore) const {
    const openssl::ErrorScope scope;
    const Validation validation(CertificateAccess::get(*this), chain, options, trustStore);
    CertificateValidationResults results = validation.run(CoveringLists::Strong);
    if (results.getCertificateChainStatus() == Status::RevocationUnknown && options.isAcceptingWeakDigests())
        return validation.run(CoveringLists::All); // so a weak list counts only if it is needed
    return results;
}

} // namespace bedrock::certificates
