#pragma once

#include <bedrock/certificates/CertificateValidationResults.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>

namespace opc::model {

/// The status of a signature with nothing to say about certificates.
inline DigitalSignatureVerificationStatus
makeVerificationStatus(const bedrock::codesigning_verifier::ErrorCode& code) {
    using namespace bedrock::certificates;
    return DigitalSignatureVerificationStatus(bedrock::codesigning_verifier::CodesigningVerificationStatus(
        code, CertificateValidationResults(CertificateChainStatus::Good, "")));
}

} // namespace opc::model
