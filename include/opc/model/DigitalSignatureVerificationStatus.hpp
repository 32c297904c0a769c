#pragma once

#include <bedrock/codesigning_verifier/CodesigningVerificationStatus.hpp>
#include <opc/model/Export.hpp>

namespace opc::model {

/// Whether a signature holds, and if not, why. A value.
///
/// A signature that doesn't hold is told here; one that can't be checked at all raises `InvalidSignature`
/// instead.
class OPC_MODEL_EXPORT DigitalSignatureVerificationStatus {
public:
    explicit DigitalSignatureVerificationStatus(
        const bedrock::codesigning_verifier::CodesigningVerificationStatus& status);

    bedrock::codesigning_verifier::CodesigningVerificationStatus getCodesigningVerificationStatus() const;

    /// 0 if the signature holds; 101 if something that was signed has changed. docs/errors.md has all codes.
    bedrock::codesigning_verifier::ErrorCode getErrorCode() const;

    /// Whether the signature holds.
    bool isProperlyCodesigned() const;

    /// Whether the signature value or a digest is wrong: what was signed isn't what stands here.
    bool isErrorFromSignature() const;

    /// Whether the signer isn't trusted. The signature value and all digests are right then.
    bool isErrorFromCertificateChain() const;

private:
    bedrock::codesigning_verifier::CodesigningVerificationStatus m_status;
};

} // namespace opc::model
