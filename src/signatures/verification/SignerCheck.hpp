#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>

#include <string>
#include <vector>

namespace opc::model {

class DigitalSignatureData;

/// The result of checking a signature value by a policy.
struct SignerFinding {
    explicit SignerFinding(DigitalSignatureVerificationStatus status) : status(std::move(status)) {}

    /// The result for a signer who isn't accepted.
    static SignerFinding refuse(const bedrock::codesigning_verifier::ErrorCode& code,
                                const std::string& reason);

    DigitalSignatureVerificationStatus status;
    std::string reason; ///< why the signer isn't accepted, in the words of the certificate services
    SignerEvidence evidence = SignerEvidence::None;
    bedrock::certificates::X509Certificate certificate; ///< empty unless it was checked and accepted
    bool restsOnClaimedTime = false;
    std::vector<std::string> weaknesses; ///< of certificates and revocation lists
};

/// Checks signature values and their signers by a policy, which must outlive this object.
class SignerCheck {
public:
    explicit SignerCheck(const SignaturePolicy& policy) : policy(policy) {}

    /// @throws InvalidSignature  as the operations of `DigitalSignatureData` that check the value
    SignerFinding check(const DigitalSignatureData& data) const;

private:
    using Options = bedrock::certificates::CertificateValidationOptions;

    DigitalSignatureVerificationStatus verify(const DigitalSignatureData& data, const Options& options) const;
    Options makeOptions() const;
    bool isKnown(const bedrock::certificates::X509Certificate& certificate) const;

    const SignaturePolicy& policy;
};

/// The weak algorithms of the signature itself, each with its place: of the value and of every digest.
/// @throws opc::Exception  a digest is unknown
std::vector<std::string> findWeaknesses(const DigitalSignatureData& data);

} // namespace opc::model
