#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/model/Export.hpp>

#include <utility>
#include <vector>

namespace opc::model {

/// The conditions of `DigitalSignatureManager::judge`: who may sign, and what a signature must fulfil. A value type.
///
/// Only `acceptWeak` decides about weak algorithms; the validation options don't. A fingerprint store that accepts
/// signatures by the key that they contain has no effect here, because such a key doesn't identify anybody.
class OPC_MODEL_EXPORT SignaturePolicy {
public:
    using Bytes = std::vector<unsigned char>;
    using CertificateValidationOptions = bedrock::certificates::CertificateValidationOptions;
    using FingerprintStore = bedrock::codesigning_verifier::FingerprintStore;
    using TrustStore = bedrock::certificates::TrustStore;

    /// Accepts the owner of this key; ignores certificates.
    static SignaturePolicy byPublicKey(Bytes key);

    /// Accepts everyone whose certificate leads to a certificate of the store or has one of these fingerprints. An empty
    /// store means the system's certificates.
    static SignaturePolicy byTrust(TrustStore trusted, CertificateValidationOptions options = {},
                                   FingerprintStore known = {});

    /// Accepts only the owners of the certificates with these fingerprints.
    static SignaturePolicy byFingerprints(FingerprintStore known);

    /// Accepts MD5, SHA-1 and RSA keys below 2048 bits, in signatures, certificates and revocation lists.
    SignaturePolicy& acceptWeak(bool accept = true);

    /// Requires that nothing in the package is uncovered, has another content type than when it was signed, or is ignored
    /// by its store: see `PackageCoverage::isFull`.
    SignaturePolicy& requireFull(bool require = true);

    bool isAcceptingWeak() const { return acceptingWeak; }
    bool isRequiringFull() const { return requiringFull; }

private:
    friend class SignerCheck;

    enum class Means { PublicKey, Trust, Fingerprints };

    explicit SignaturePolicy(Means means) : means(means) {}

    Means means;
    Bytes publicKey;
    TrustStore trustStore;
    CertificateValidationOptions options;
    FingerprintStore fingerprints;
    bool acceptingWeak = false;
    bool requiringFull = false;
};

} // namespace opc::model
