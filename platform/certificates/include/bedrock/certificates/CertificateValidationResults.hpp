#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bedrock::certificates {

/// Why a certificate isn't trusted. 0 means good, and is also used if no chain was checked.
enum class CertificateChainStatus {
    Good = 0,
    Expired,           ///< a certificate of the chain is past its validity
    NotYetValid,       ///< a certificate of the chain isn't valid yet
    UnknownIssuer,     ///< the chain ends before it reaches a certificate of the trust store
    SelfSigned,        ///< the chain ends in a self-signed certificate that isn't in the trust store
    WrongPurpose,      ///< the key, or a key usage in the chain, doesn't allow the certificate to sign
    InvalidChain,      ///< an issuer isn't allowed to issue, or a rule of RFC 5280 section 6 is broken
    Revoked,           ///< a revocation list names a certificate of the chain
    RevocationUnknown, ///< no usable revocation list covers the certificate
    WeakAlgorithm,     ///< a key or a digest of the chain is below 112 bits of security
    BadSignature,      ///< a certificate of the chain wasn't signed by its issuer's key
};

/// An algorithm that a validation used and that has less than 112 bits of security (NIST SP 800-57 part 1): RSA keys
/// below 2048 bits, MD5, SHA-1. It is acceptable only for old documents.
struct WeakAlgorithm {
    enum class Place {
        Key,                  ///< the key of a certificate of the chain
        CertificateSignature, ///< the digest in the signature of a certificate of the chain
        RevocationList,       ///< the digest in the signature of a revocation list
    };

    Place place;
    std::string algorithm; ///< such as "RSA 1024", "MD5" or "SHA-1"
    std::string name;      ///< the subject of the certificate, or the issuer of the list
};

/// The result of validating a certificate: a status and, unless it is good, a text that says why.
class CertificateValidationResults {
public:
    CertificateValidationResults(CertificateChainStatus status, std::string text,
                                 std::vector<WeakAlgorithm> weakAlgorithms = {})
        : status(status), text(std::move(text)), weakAlgorithms(std::move(weakAlgorithms)) {}

    CertificateChainStatus getCertificateChainStatus() const noexcept { return status; }
    const std::string& getValidationErrorString() const noexcept { return text; }

    /// The weak algorithms of the chain that was found, beginning with the validated certificate, and then those of the
    /// revocation lists that were used. The list is complete for the statuses `Good` (the options accept all of them) and
    /// `WeakAlgorithm`; for other statuses the chain wasn't checked for weak algorithms.
    const std::vector<WeakAlgorithm>& getWeakAlgorithms() const noexcept { return weakAlgorithms; }

private:
    CertificateChainStatus status;
    std::string text;
    std::vector<WeakAlgorithm> weakAlgorithms;
};

} // namespace bedrock::certificates
