#pragma once

#include <bedrock/certificates/CertificateValidationResults.hpp>
#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <bedrock/crypto/Export.hpp>
#include <bedrock/crypto/utils/SignatureVerificationStatus.hpp>

namespace bedrock::codesigning_verifier {

/// The outcome of a verification: a code, and what the validation of the certificate said, if it came to
/// that. A value.
class BEDROCK_CRYPTO_EXPORT CodesigningVerificationStatus {
public:
    CodesigningVerificationStatus(const ErrorCode& errorCode,
                                  certificates::CertificateValidationResults results);

    /// The outcome of checking a signature value alone: code 0, 1 or 2 (see Verify.hpp).
    explicit CodesigningVerificationStatus(crypto::utils::SignatureVerificationStatus status);

    /// Whether the code is 0.
    bool isProperlyCodesigned() const noexcept { return code.value() == 0; }
    ErrorCode getErrorCode() const noexcept { return code; }

    /// Status 0 and an empty text where no chain was looked at.
    const certificates::CertificateValidationResults& getCertificateValidationResults() const noexcept {
        return validation;
    }

private:
    ErrorCode code;
    certificates::CertificateValidationResults validation;
};

} // namespace bedrock::codesigning_verifier
