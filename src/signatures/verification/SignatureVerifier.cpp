#include "signatures/verification/SignatureVerifier.hpp"

#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/SignatureWork.hpp"
#include "signatures/signature/VerificationStatus.hpp"
#include "signatures/verification/ReferenceCheck.hpp"

#include <opc/model/Errors.hpp>

namespace opc::model {

using bedrock::codesigning_verifier::ErrorMap;

DigitalSignatureVerificationStatus SignatureVerifier::verify(const DigitalSignature& signature,
                                                             const ValueCheck& checkValue) {
    if (work > MAXIMUM_WORK)
        throw InvalidSignature(TOO_MUCH_WORK, ErrorMap<102>());
    const DigitalSignatureData& data = DigitalSignatureData::of(signature);
    try {
        return verify(data, checkValue(data));
    } catch (const InvalidSignature& e) {
        throw InvalidSignature("Signature is invalid: " + std::to_string(e.getErrorCode().value()),
                               e.getErrorCode());
    } catch (const Exception& e) {
        throw translated<InvalidSignature>(e, e.what(), ErrorMap<-1>());
    }
}

DigitalSignatureVerificationStatus
SignatureVerifier::verify(const DigitalSignatureData& data, const DigitalSignatureVerificationStatus& value) {
    if (!value.isProperlyCodesigned() && value.isErrorFromSignature())
        return value;
    if (!findDifferences(data, *data.m_signedRelationships, digesters).empty())
        return makeVerificationStatus(ErrorMap<101>());
    if (value.isProperlyCodesigned() || value.isErrorFromCertificateChain())
        return value;
    throw InvalidSignature(
        "Digital signature verification failed, but the failure wasn't from the signature, "
        "references, or certificate chain.",
        value.getErrorCode());
}

} // namespace opc::model
