#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509Certificate.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// Whom to trust. A value type.
struct TrustPolicy {
    /// The certificates that chains must lead to, of signers and of time stamps. An empty store trusts nobody.
    bedrock::certificates::TrustStore roots;

    /// Certificates that are trusted whatever they say and whenever: SHA-256 over DER, in lower-case hexadecimal digits.
    std::vector<std::string> fingerprints;

    /// Keys whose owners are trusted, as SubjectPublicKeyInfo in DER; their certificates aren't checked.
    std::vector<std::vector<unsigned char>> publicKeys;

    /// Revocation lists, and the time at which certificates must be valid if no trusted time stamp gives one; without it,
    /// now. Which algorithms and keys are accepted, `VerificationPolicy` says.
    bedrock::certificates::CertificateValidationOptions validation;
};

/// The third answer: who signed.
struct TrustAnswer {
    enum class Status {
        NotChecked, ///< nobody said whom to trust, or the cryptography is broken
        Unknown,    ///< the signature has a key and no certificate
        Trusted,
        NotTrusted,
    };

    /// What says when the certificate must be valid.
    enum class TimeFrom { Now, Caller, TimeStamp };

    /// What the trust rests on.
    enum class Evidence { None, Chain, Fingerprint, PublicKey };

    Status status = Status::NotChecked;
    Evidence evidence = Evidence::None;
    std::string reason;                            ///< why it isn't `Trusted`, in English
    bedrock::certificates::X509Certificate signer; ///< empty without a certificate

    TimeFrom timeFrom = TimeFrom::Now;
    std::optional<std::chrono::system_clock::time_point> time; ///< of the time stamp or of the caller
    std::string
        timeStampFailure; ///< why no time stamp of the signature is trusted; empty if one is or there is none
};

} // namespace opc::standard_signatures
