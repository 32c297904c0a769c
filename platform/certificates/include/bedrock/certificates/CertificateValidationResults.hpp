#pragma once

#include <string>
#include <utility>

namespace bedrock::certificates {

/// Why a certificate isn't trusted, by cause. 0 is good, and stands also where no chain was looked at.
enum class CertificateChainStatus {
    Good = 0,
    Expired,           ///< a certificate of the chain is past its validity
    NotYetValid,       ///< a certificate of the chain isn't valid yet
    UnknownIssuer,     ///< the chain ends before it reaches a certificate of the trust store
    SelfSigned,        ///< the chain ends in a self-signed certificate that the trust store doesn't hold
    WrongPurpose,      ///< the certificate, by its key usages, isn't there for signing
    InvalidChain,      ///< an issuer isn't allowed to issue, or a rule of RFC 5280 section 6 is broken
    Revoked,           ///< a revocation list names a certificate of the chain
    RevocationUnknown, ///< no usable revocation list covers the certificate
    WeakAlgorithm,     ///< a key or a digest of the chain is below 112 bits of security
    BadSignature,      ///< a certificate of the chain wasn't signed by its issuer's key
};

/// The outcome of validating a certificate: a status and, unless it is good, a text that says why.
class CertificateValidationResults {
public:
    CertificateValidationResults(CertificateChainStatus chainStatus, std::string errorText)
        : status(chainStatus), text(std::move(errorText)) {}

    CertificateChainStatus getCertificateChainStatus() const noexcept { return status; }
    const std::string& getValidationErrorString() const noexcept { return text; }

private:
    CertificateChainStatus status;
    std::string text;
};

} // namespace bedrock::certificates
