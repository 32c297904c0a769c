#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/model/Export.hpp>

#include <utility>
#include <vector>

namespace opc::model {

/// By what `DigitalSignatureManager::judge` judges: who may sign, and how much is asked of a signature. A
/// value.
///
/// What the validation options say about weak algorithms doesn't count: `acceptWeak` alone does. Nor does it
/// count that a fingerprint store lets signatures pass by the key that they carry: that names nobody.
class OPC_MODEL_EXPORT SignaturePolicy {
public:
    using Bytes = std::vector<unsigned char>;
    using CertificateValidationOptions = bedrock::certificates::CertificateValidationOptions;
    using FingerprintStore = bedrock::codesigning_verifier::FingerprintStore;
    using TrustStore = bedrock::certificates::TrustStore;

    /// The owner of this key may sign; no certificate is looked at.
    static SignaturePolicy byPublicKey(Bytes key);

    /// Whoever has a certificate that leads to one of the store may sign, and whoever has one of these
    /// fingerprints. An empty store stands for the system's certificates.
    static SignaturePolicy byTrust(TrustStore trusted, CertificateValidationOptions options = {},
                                   FingerprintStore known = {});

    /// The owners of the certificates with these fingerprints alone may sign.
    static SignaturePolicy byFingerprints(FingerprintStore known);

    /// Accepts MD5, SHA-1 and RSA keys below 2048 bits, in signatures, certificates and revocation lists.
    SignaturePolicy& acceptWeak(bool accept = true);

    /// Asks that nothing of the package is uncovered, changed in content type or ignored by its store: see
    /// `PackageCoverage::isFull`.
    SignaturePolicy& requireFull(bool require = true);

    bool isAcceptingWeak() const { return acceptingWeak; }
    bool isRequiringFull() const { return requiringFull; }

private:
    friend class SignerCheck;

    enum class Means { PublicKey, Trust, Fingerprints };

    explicit SignaturePolicy(Means signerMeans) : means(signerMeans) {}

    Means means;
    Bytes publicKey;
    TrustStore trustStore;
    CertificateValidationOptions options;
    FingerprintStore fingerprints;
    bool acceptingWeak = false;
    bool requiringFull = false;
};

} // namespace opc::model
