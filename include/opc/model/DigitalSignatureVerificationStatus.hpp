#pragma once

#include <bedrock/codesigning_verifier/CodesigningVerificationStatus.hpp>
#include <opc/model/Export.hpp>

namespace opc::model {

/// Whether a signature holds, and why not. A value type.
///
/// If a signature can't be checked, there is no status: `InvalidSignature` is thrown instead.
class OPC_MODEL_EXPORT DigitalSignatureVerificationStatus {
public:
    explicit DigitalSignatureVerificationStatus(
        const bedrock::codesigning_verifier::CodesigningVerificationStatus& status);

    bedrock::codesigning_verifier::CodesigningVerificationStatus getCodesigningVerificationStatus() const;

    /// 0 if the signature holds; 101 if something signed has changed. docs/errors.md lists all codes.
    bedrock::codesigning_verifier::ErrorCode getErrorCode() const;

    /// Whether the signature holds.
    bool isProperlyCodesigned() const;

    /// Whether the signature value or a digest is wrong: the package isn't as it was signed.
    bool isErrorFromSignature() const;

    /// Whether the signer isn't trusted. Then the signature value and all digests are right.
    bool isErrorFromCertificateChain() const;

private:
    bedrock::codesigning_verifier::CodesigningVerificationStatus m_status;
};

} // namespace opc::model
