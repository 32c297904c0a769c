#include <opc/model/SignaturePolicy.hpp>

namespace opc::model {

SignaturePolicy SignaturePolicy::byPublicKey(Bytes key) {
    SignaturePolicy policy(Means::PublicKey);
    policy.publicKey = std::move(key);
    return policy;
}

SignaturePolicy SignaturePolicy::byTrust(TrustStore trusted, CertificateValidationOptions options,
                                         FingerprintStore known) {
    SignaturePolicy policy(Means::Trust);
    policy.trustStore = std::move(trusted);
    policy.options = std::move(options);
    policy.fingerprints = std::move(known);
    policy.fingerprints.setSkippingVerification(false);
    policy.fingerprints.setUsingFingerprintEscapeHatch(false);
    return policy;
}

SignaturePolicy SignaturePolicy::byFingerprints(FingerprintStore known) {
    SignaturePolicy policy = byTrust({}, {}, std::move(known));
    policy.means = Means::Fingerprints;
    return policy;
}

SignaturePolicy& SignaturePolicy::acceptWeak(bool accept) {
    acceptingWeak = accept;
    return *this;
}

SignaturePolicy& SignaturePolicy::requireFull(bool require) {
    requiringFull = require;
    return *this;
}

} // namespace opc::model
