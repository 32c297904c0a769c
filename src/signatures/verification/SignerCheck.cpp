#include "signatures/verification/SignerCheck.hpp"

#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/VerificationStatus.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>

#include <chrono>

namespace opc::model {

namespace {

using bedrock::certificates::CertificateChainStatus;
using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::CertificateValidationResults;
using bedrock::certificates::WeakAlgorithm;
using bedrock::certificates::X509Certificate;
using bedrock::codesigning_verifier::CodesigningVerificationStatus;
using bedrock::codesigning_verifier::ErrorMap;

std::string reasonOf(const DigitalSignatureVerificationStatus& status) {
    if (status.getErrorCode() == ErrorMap<9>())
        return "the signature carries none";
    return status.getCodesigningVerificationStatus()
        .getCertificateValidationResults()
        .getValidationErrorString();
}

std::string describeWeakness(const WeakAlgorithm& weak) {
    switch (weak.place) {
    case WeakAlgorithm::Place::Key:
        return weak.algorithm + " key of " + weak.name;
    case WeakAlgorithm::Place::CertificateSignature:
        return weak.algorithm + " digest in the certificate of " + weak.name;
    case WeakAlgorithm::Place::RevocationList:
        break;
    }
    return weak.algorithm + " digest in a revocation list of " + weak.name;
}

std::vector<std::string> weaknessesOf(const DigitalSignatureVerificationStatus& status) {
    std::vector<std::string> texts;
    const auto results = status.getCodesigningVerificationStatus().getCertificateValidationResults();
    for (const WeakAlgorithm& weak : results.getWeakAlgorithms())
        texts.push_back(describeWeakness(weak));
    return texts;
}

/// Whether the key that made the value is the key of the signature's certificate, if it has one. Otherwise a reader
/// of the certificate would take somebody else for the signer.
bool fitsItsCertificate(const DigitalSignatureData& data) {
    if (!data.m_certificate)
        return true;
    try {
        const X509Certificate& certificate = *data.m_certificate;
        return data
            .verifyWithKey(encodeRsaPublicKey(*data.m_cryptoEngine, data.m_signatureValue.size() * 8,
                                              certificate.getModulus(), certificate.getPublicExponent()))
            .isProperlyCodesigned();
    } catch (const Exception&) { // its key has another kind or size
        return false;
    } catch (const bedrock::crypto::utils::Exception&) {
        return false;
    }
}

} // namespace

SignerFinding SignerFinding::refuse(const bedrock::codesigning_verifier::ErrorCode& code,
                                    const std::string& reason) {
    SignerFinding finding(makeVerificationStatus(code));
    finding.reason = reason;
    return finding;
}

SignerFinding SignerCheck::check(const DigitalSignatureData& data) const {
    if (policy.means == SignaturePolicy::Means::PublicKey) {
        SignerFinding finding(data.verifyWithKey(policy.publicKey));
        if (!finding.status.isProperlyCodesigned())
            return finding;
        if (!fitsItsCertificate(data))
            return SignerFinding::refuse(ErrorMap<16>(), "it carries a certificate of another key");
        finding.evidence = SignerEvidence::PublicKey;
        return finding;
    }
    SignerFinding finding(verify(data, makeOptions()));
    finding.reason = reasonOf(finding.status);
    finding.weaknesses = weaknessesOf(finding.status);
    if (!finding.status.isProperlyCodesigned())
        return finding;
    finding.certificate = data.getCertificate();
    finding.evidence =
        isKnown(finding.certificate) ? SignerEvidence::Fingerprint : SignerEvidence::Certificate;
    if (!policy.options.getCheckTime() && !data.getSignedTime().is_special()) {
        Options now = makeOptions();
        now.setCheckTime(std::chrono::system_clock::now());
        finding.restsOnClaimedTime = !verify(data, now).isProperlyCodesigned();
    }
    return finding;
}

DigitalSignatureVerificationStatus SignerCheck::verify(const DigitalSignatureData& data,
                                                       const Options& options) const {
    auto status = data.verifyWithFingerprints(policy.fingerprints, policy.trustStore, options);
    if (!status.isProperlyCodesigned() || policy.means == SignaturePolicy::Means::Trust ||
        isKnown(data.getCertificate()))
        return status;
    // An empty trust store means the system's certificates, but this policy accepts only its fingerprints.
    return DigitalSignatureVerificationStatus(CodesigningVerificationStatus(
        ErrorMap<5>(), CertificateValidationResults(CertificateChainStatus::UnknownIssuer,
                                                    "the certificate's fingerprint isn't a known one")));
}

SignerCheck::Options SignerCheck::makeOptions() const {
    Options options = policy.options;
    options.setAcceptingWeakKeys(policy.acceptingWeak);
    options.setAcceptingWeakDigests(policy.acceptingWeak);
    return options;
}

bool SignerCheck::isKnown(const X509Certificate& certificate) const {
    return policy.fingerprints.hasFingerprint(certificate.getSHA256Fingerprint());
}

} // namespace opc::model
