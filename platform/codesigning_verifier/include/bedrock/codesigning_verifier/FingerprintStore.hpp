#pragma once

#include <bedrock/crypto/Export.hpp>

#include <set>
#include <string>

namespace bedrock::codesigning_verifier {

/// The SHA-256 fingerprints of certificates that the application knows. A value type. A signature that holds with one of
/// these certificates is accepted without validating the certificate.
class BEDROCK_CRYPTO_EXPORT FingerprintStore {
public:
    /// @param fingerprint  64 hexadecimal digits in upper or lower case; colons are ignored
    /// @throws std::invalid_argument  `fingerprint` has another form
    void addFingerprint(const std::string& fingerprint);

    /// Whether the store has this fingerprint; false for a text that isn't a fingerprint.
    bool hasFingerprint(const std::string& fingerprint) const;

    /// Whether a signature without a certificate can hold by the key that it contains, which says nothing about the signer.
    /// This doesn't change anything for signatures with a certificate. False by default.
    bool isSkippingVerification() const noexcept { return skippingVerification; }
    void setSkippingVerification(bool skipping) noexcept { skippingVerification = skipping; }

    /// The same, for an application in which a user accepts such a signature manually. False by default.
    bool usingFingerprintEscapeHatch() const noexcept { return escapeHatch; }
    void setUsingFingerprintEscapeHatch(bool use) noexcept { escapeHatch = use; }

private:
    std::set<std::string> fingerprints;
    bool skippingVerification = false;
    bool escapeHatch = false;
};

} // namespace bedrock::codesigning_verifier
