#pragma once

#include <bedrock/certificates/CertificateValidationResults.hpp>
#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <bedrock/crypto/Export.hpp>
#include <bedrock/crypto/utils/SignatureVerificationStatus.hpp>

namespace bedrock::codesigning_verifier {

/// The result of a verification: a code, and the result of validating the certificate if it was validated. A value type.
class BEDROCK_CRYPTO_EXPORT CodesigningVerificationStatus {
public:
    CodesigningVerificationStatus(const ErrorCode& code,
                                  certificates::CertificateValidationResults validation);

    /// The result of checking only a signature value: code 0, 1 or 2 (see Verify.hpp).
    explicit CodesigningVerificationStatus(crypto::utils::SignatureVerificationStatus status);

    /// Whether the code is 0.
    bool isProperlyCodesigned() const noexcept { return code.value() == 0; }
    ErrorCode getErrorCode() const noexcept { return code; }

    /// Status 0 and an empty text if no chain was checked.
    const certificates::CertificateValidationResults& getCertificateValidationResults() const noexcept {
        return validation;
    }

private:
    ErrorCode code;
    certificates::CertificateValidationResults validation;
};

} // namespace bedrock::codesigning_verifier
