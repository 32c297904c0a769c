#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/VerificationStatus.hpp"

#include <opc/model/Errors.hpp>

#include <set>

/// @file
/// Verification of one signature, of all, and of the countersignature.

namespace opc::model {

namespace {

DigitalSignature requireCountersignature(DigitalSignatureManager& manager) {
    if (!manager.isPackageCountersigned())
        throw SignatureNotFound("No countersignatures found in package.");
    return manager.getCountersignature();
}

} // namespace

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(const DigitalSignature& signature,
                                                                            const Bytes& publicKey) {
    return loaded().makeVerifier().verify(
        signature, [&](const DigitalSignatureData& data) { return data.verifyWithKey(publicKey); });
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(
    const DigitalSignature& signature, const FingerprintStore& fingerprints,
    const CertificateValidationOptions& options, const TrustStore& trustStore) {
    return loaded().makeVerifier().verify(signature, [&](const DigitalSignatureData& data) {
        return data.verifyWithFingerprints(fingerprints, trustStore, options);
    });
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(
    const DigitalSignature& signature, const X509Certificate& certificate,
    const FingerprintStore& fingerprints, const X509CertificateChain& chain,
    const CertificateValidationOptions& options, const TrustStore& trustStore) {
    return loaded().makeVerifier().verify(signature, [&](const DigitalSignatureData& data) {
        return data.verifyWithCertificate(certificate, fingerprints, chain, trustStore, options);
    });
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifyAllSignatures(const FingerprintStore& fingerprints,
                                             const CertificateValidationOptions& options,
                                             const TrustStore& trustStore) {
    const auto checkValue = [&](const DigitalSignatureData& data) {
        return data.verifyWithFingerprints(fingerprints, trustStore, options);
    };
    const Impl& impl = loaded();
    SignatureVerifier verifier = impl.makeVerifier();
    // Each signature is verified once, however many relationships lead to it: a small package can have very many.
    std::set<const DigitalSignatureData*> verified;
    for (const DigitalSignature& signature : impl.list.signatures) {
        if (!verified.insert(&DigitalSignatureData::of(signature)).second)
            continue;
        auto status = verifier.verify(signature, checkValue);
        if (!status.isProperlyCodesigned())
            return status;
    }
    return makeVerificationStatus(bedrock::codesigning_verifier::ErrorMap<0>());
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifyCountersignature(const Bytes& publicKey) {
    loaded();
    return verifySignature(requireCountersignature(*this), publicKey);
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifyCountersignature(const FingerprintStore& fingerprints,
                                                const CertificateValidationOptions& options,
                                                const TrustStore& trustStore) {
    loaded();
    return verifySignature(requireCountersignature(*this), fingerprints, options, trustStore);
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifyCountersignature(
    const X509Certificate& certificate, const FingerprintStore& fingerprints,
    const X509CertificateChain& chain, const CertificateValidationOptions& options,
    const TrustStore& trustStore) {
    loaded();
    return verifySignature(requireCountersignature(*this), certificate, fingerprints, chain, options,
                           trustStore);
}

} // namespace opc::model
