#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bedrock::certificates {

/// Why a certificate isn't trusted, by cause. 0 is good, and stands also where no chain was looked at.
enum class CertificateChainStatus {
    Good = 0,
    Expired,           ///< a certificate of the chain is past its validity
    NotYetValid,       ///< a certificate of the chain isn't valid yet
    UnknownIssuer,     ///< the chain ends before it reaches a certificate of the trust store
    SelfSigned,        ///< the chain ends in a self-signed certificate that the trust store doesn't hold
    WrongPurpose,      ///< the certificate, by its key or by key usages of the chain, isn't there for signing
    InvalidChain,      ///< an issuer isn't allowed to issue, or a rule of RFC 5280 section 6 is broken
    Revoked,           ///< a revocation list names a certificate of the chain
    RevocationUnknown, ///< no usable revocation list covers the certificate
    WeakAlgorithm,     ///< a key or a digest of the chain is below 112 bits of security
    BadSignature,      ///< a certificate of the chain wasn't signed by its issuer's key
};

/// Something that a validation relied on and that has less than 112 bits of security (NIST SP 800-57 part 1),
/// such as RSA keys of less than 2048 bits, MD5 and SHA-1: fit for old documents only.
struct WeakAlgorithm {
    enum class Place {
        Key,                  ///< the key of a certificate of the chain
        CertificateSignature, ///< the digest by which a certificate of the chain was signed
        RevocationList,       ///< the digest by which a revocation list was signed
    };

    Place place;
    std::string algorithm; ///< such as "RSA 1024", "MD5" or "SHA-1"
    std::string name;      ///< the subject of the certificate, or the issuer of the list
};

/// The outcome of validating a certificate: a status and, unless it is good, a text that says why.
class CertificateValidationResults {
public:
    CertificateValidationResults(CertificateChainStatus chainStatus, std::string errorText,
                                 std::vector<WeakAlgorithm> weak = {})
        : status(chainStatus), text(std::move(errorText)), weakAlgorithms(std::move(weak)) {}

    CertificateChainStatus getCertificateChainStatus() const noexcept { return status; }
    const std::string& getValidationErrorString() const noexcept { return text; }

    /// What is weak in the chain that was found, from the validated certificate on, and then in the revocation
    /// lists that it took. It is complete with the statuses `Good`, where the options accept all of it, and
    /// `WeakAlgorithm`; with others the chain wasn't looked at.
    const std::vector<WeakAlgorithm>& getWeakAlgorithms() const noexcept { return weakAlgorithms; }

private:
    CertificateChainStatus status;
    std::string text;
    std::vector<WeakAlgorithm> weakAlgorithms;
};

} // namespace bedrock::certificates
