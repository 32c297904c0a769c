#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>

#include <utility>

namespace bedrock::codesigning_verifier {

/// The algorithms that a signature must have, and how its certificate is validated. A value type.
class CodesigningVerificationOptions {
public:
    /// RSA with a key of this many bits.
    enum class SignatureMethod { RSA1024 = 0, RSA2048 = 1, RSA4096 = 2 };

    enum class SignatureDigestMethod { MD5 = 0, SHA1 = 1, SHA224 = 2, SHA384 = 3, SHA256 = 4, SHA512 = 5 };

    enum class SignaturePaddingMode { PKCS1v15 = 4 };

    CodesigningVerificationOptions(SignatureMethod signature, SignatureDigestMethod digest,
                                   SignaturePaddingMode padding,
                                   certificates::CertificateValidationOptions validation)
        : signature(signature), digest(digest), padding(padding), validation(std::move(validation)) {}

    SignatureMethod getSignatureMethod() const noexcept { return signature; }
    SignatureDigestMethod getSignatureDigestMethod() const noexcept { return digest; }
    SignaturePaddingMode getSignaturePaddingMode() const noexcept { return padding; }
    const certificates::CertificateValidationOptions& getCertificateValidationOptions() const noexcept {
        return validation;
    }

private:
    SignatureMethod signature;
    SignatureDigestMethod digest;
    SignaturePaddingMode padding;
    certificates::CertificateValidationOptions validation;
};

} // namespace bedrock::codesigning_verifier
