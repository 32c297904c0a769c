#include "trust/TrustCheck.hpp"

#include "canonical/CanonicalXml.hpp"

#include <bedrock/certificates/TimeStamp.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <opc/core/Exception.hpp>

#include <algorithm>

namespace opc::standard_signatures {

namespace {

using namespace bedrock::certificates;
using Evidence = TrustAnswer::Evidence;
using TrustStatus = TrustAnswer::Status;
using TimeFrom = TrustAnswer::TimeFrom;

CertificateValidationOptions makeOptions(const VerificationPolicy& policy) {
    CertificateValidationOptions options = policy.trust->validation;
    options.setAcceptingWeakKeys(policy.acceptWeak);
    options.setAcceptingWeakDigests(policy.acceptWeak);
    options.setAcceptingOtherKeys(true);
    return options;
}

TimeStampResults checkOne(const SignatureDocument& document, const StatedTimeStamp& stamp,
                          const CertificateValidationOptions& options, const TrustStore& roots,
                          WorkLeft& work) {
    try {
        const std::string content =
            stamp.form ? canonicalize(*document.signatureValue, *stamp.form, work.canonicalForms)
                       : std::string(document.value.begin(), document.value.end());
        return checkTimeStamp(stamp.token, content, options, roots);
    } catch (const Exception& e) {
        TimeStampResults failure;
        failure.error = e.what();
        return failure;
    }
}

/// The signature existed at the earliest time of a trusted time stamp, so its certificate must be valid then. Otherwise
/// it must be valid now: the time that the signer claims is no proof.
void findTime(TrustAnswer& answer, const SignatureDocument& document,
              const CertificateValidationOptions& options, const TrustStore& roots, WorkLeft& work) {
    answer.time = options.getCheckTime();
    answer.timeFrom = answer.time ? TimeFrom::Caller : TimeFrom::Now;
    for (const StatedTimeStamp& stamp : document.timeStamps) {
        if (work.timeStamps == 0) {
            answer.timeStampFailure = "the signatures of the package have too many";
            break;
        }
        --work.timeStamps;
        const TimeStampResults results = checkOne(document, stamp, options, roots, work);
        if (!results.isTrusted) {
            answer.timeStampFailure = results.error;
        } else if (answer.timeFrom != TimeFrom::TimeStamp || *results.time < *answer.time) {
            answer.time = results.time;
            answer.timeFrom = TimeFrom::TimeStamp;
        }
    }
    if (answer.timeFrom == TimeFrom::TimeStamp)
        answer.timeStampFailure.clear();
}

/// Whether the caller knows the key or its certificate.
Evidence findKnown(const std::vector<unsigned char>& key, const X509Certificate& certificate,
                   const VerificationPolicy& policy) {
    const auto has = [](const auto& all, const auto& one) {
        return std::find(all.begin(), all.end(), one) != all.end();
    };
    if (policy.trust && has(policy.trust->publicKeys, key))
        return Evidence::PublicKey;
    return policy.trust && !certificate.empty() &&
                   has(policy.trust->fingerprints, certificate.getSHA256Fingerprint())
               ? Evidence::Fingerprint
               : Evidence::None;
}

} // namespace

TrustAnswer checkTrust(const SignatureDocument& document, const std::vector<unsigned char>& key,
                       const X509Certificate& certificate, const std::vector<X509Certificate>& others,
                       const VerificationPolicy& policy, WorkLeft& work) {
    TrustAnswer answer;
    answer.signer = certificate;
    answer.evidence = findKnown(key, certificate, policy);
    if (answer.evidence != Evidence::None) {
        answer.status = TrustStatus::Trusted;
        return answer;
    }
    if (certificate.empty()) {
        answer.status = TrustStatus::Unknown;
        answer.reason = "The signature has a key and no certificate";
        return answer;
    }
    if (!policy.trust) {
        answer.reason = "Nobody said whom to trust";
        return answer;
    }
    CertificateValidationOptions options = makeOptions(policy);
    findTime(answer, document, options, policy.trust->roots, work);
    options.setCheckTime(answer.time);
    options.setCheckTimeProven(answer.timeFrom == TimeFrom::TimeStamp);
    X509CertificateChain chain;
    for (const X509Certificate& other : others)
        chain.addCertificate(other);
    const CertificateValidationResults results =
        certificate.validateCertificate(chain, options, policy.trust->roots);
    const bool isGood = results.getCertificateChainStatus() == CertificateChainStatus::Good;
    answer.status = isGood ? TrustStatus::Trusted : TrustStatus::NotTrusted;
    answer.evidence = isGood ? Evidence::Chain : Evidence::None;
    answer.reason = isGood ? std::string() : results.getValidationErrorString();
    return answer;
}

} // namespace opc::standard_signatures
