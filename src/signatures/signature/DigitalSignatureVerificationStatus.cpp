#include <opc/model/DigitalSignatureVerificationStatus.hpp>

#include <algorithm>
#include <iterator>

namespace opc::model {

namespace {

constexpr int SIGNATURE_CODES[] = {1, 2, 12, 15, 17, 18, 101};
constexpr int CERTIFICATE_CHAIN_CODES[] = {3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 16, 19};

template <std::size_t N>
bool isAmong(const int (&codes)[N], const bedrock::codesigning_verifier::ErrorCode& code) {
    return std::find(std::begin(codes), std::end(codes), code.value()) != std::end(codes);
}

} // namespace

DigitalSignatureVerificationStatus::DigitalSignatureVerificationStatus(
    const bedrock::codesigning_verifier::CodesigningVerificationStatus& status)
    : m_status(status) {
}

bedrock::codesigning_verifier::CodesigningVerificationStatus
DigitalSignatureVerificationStatus::getCodesigningVerificationStatus() const {
    return m_status;
}

bedrock::codesigning_verifier::ErrorCode DigitalSignatureVerificationStatus::getErrorCode() const {
    return m_status.getErrorCode();
}

bool DigitalSignatureVerificationStatus::isProperlyCodesigned() const {
    return m_status.isProperlyCodesigned();
}

bool DigitalSignatureVerificationStatus::isErrorFromSignature() const {
    return isAmong(SIGNATURE_CODES, getErrorCode());
}

bool DigitalSignatureVerificationStatus::isErrorFromCertificateChain() const {
    return isAmong(CERTIFICATE_CHAIN_CODES, getErrorCode());
}

} // namespace opc::model
