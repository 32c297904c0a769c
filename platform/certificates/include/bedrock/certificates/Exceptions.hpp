#pragma once

#include <bedrock/crypto/Export.hpp>

#include <stdexcept>
#include <string>

namespace bedrock::certificates {

/// A bundle, a trust store or a revocation list can't be read. `what()` says what failed and, in parentheses, the message
/// of OpenSSL.
class BEDROCK_CRYPTO_EXPORT CertificateException : public std::runtime_error {
public:
    explicit CertificateException(const std::string& message) : std::runtime_error(message) {}
    CertificateException(const CertificateException&) = default;
    CertificateException(CertificateException&&) = default;
    ~CertificateException() override;
};

/// Bytes aren't a certificate, or an empty certificate is asked for its content.
class BEDROCK_CRYPTO_EXPORT X509CertificateException : public CertificateException {
public:
    explicit X509CertificateException(const std::string& message) : CertificateException(message) {}
    X509CertificateException(const X509CertificateException&) = default;
    X509CertificateException(X509CertificateException&&) = default;
    ~X509CertificateException() override;
};

} // namespace bedrock::certificates
