#pragma once

#include <bedrock/crypto/Export.hpp>

#include <set>
#include <string>

namespace bedrock::codesigning_verifier {

/// Certificates that an application knows already, by their SHA-256 fingerprints; a value. A signature that
/// holds by one of them is accepted, whatever else speaks against the certificate.
class BEDROCK_CRYPTO_EXPORT FingerprintStore {
public:
    /// @param fingerprint  64 hexadecimal digits in either case; colons among them don't count
    /// @throws std::invalid_argument  for anything else
    void addFingerprint(const std::string& fingerprint);

    /// Whether the store holds it. What is no fingerprint is in no store.
    bool hasFingerprint(const std::string& fingerprint) const;

    /// Whether a signature without a certificate may hold by the key that it carries itself, which says
    /// nothing about who signed. Signatures with a certificate aren't touched by this. False by default.
    bool isSkippingVerification() const noexcept { return skippingVerification; }
    void setSkippingVerification(bool skipping) noexcept { skippingVerification = skipping; }

    /// The same, for an application that lets a user pass such a signature by hand. False by default.
    bool usingFingerprintEscapeHatch() const noexcept { return escapeHatch; }
    void setUsingFingerprintEscapeHatch(bool use) noexcept { escapeHatch = use; }

private:
    std::set<std::string> fingerprints;
    bool skippingVerification = false;
    bool escapeHatch = false;
};

} // namespace bedrock::codesigning_verifier
