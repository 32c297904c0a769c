#pragma once

#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <bedrock/crypto/Export.hpp>

#include <stdexcept>
#include <string>

namespace bedrock::codesigning_verifier {

/// A signature can't be checked; the code says why. A signature that was checked and doesn't hold gives a status instead.
class BEDROCK_CRYPTO_EXPORT CodesigningException : public std::runtime_error {
public:
    CodesigningException(const std::string& message, const ErrorCode& code)
        : std::runtime_error(message), code(code) {}
    CodesigningException(const CodesigningException&) = default;
    CodesigningException(CodesigningException&&) = default;
    ~CodesigningException() override;

    const ErrorCode& getErrorCode() const noexcept { return code; }

private:
    ErrorCode code;
};

} // namespace bedrock::codesigning_verifier
