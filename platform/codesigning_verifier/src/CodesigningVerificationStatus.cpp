#include <bedrock/codesigning_verifier/CodesigningVerificationStatus.hpp>

#include <string>
#include <utility>

namespace bedrock::codesigning_verifier {

namespace {

ErrorCode codeOf(crypto::utils::SignatureVerificationStatus status) {
    switch (status) {
    case crypto::utils::SignatureVerificationStatus::Valid:
        return ErrorMap<0>();
    case crypto::utils::SignatureVerificationStatus::WrongLength:
        return ErrorMap<2>();
    case crypto::utils::SignatureVerificationStatus::Invalid:
        break;
    }
    return ErrorMap<1>();
}

} // namespace

CodesigningVerificationStatus::CodesigningVerificationStatus(
    const ErrorCode& code, certificates::CertificateValidationResults validation)
    : code(code), validation(std::move(validation)) {
}

CodesigningVerificationStatus::CodesigningVerificationStatus(
    crypto::utils::SignatureVerificationStatus status)
    : CodesigningVerificationStatus(codeOf(status),
                                    {certificates::CertificateChainStatus::Good, std::string()}) {
}

} // namespace bedrock::codesigning_verifier
