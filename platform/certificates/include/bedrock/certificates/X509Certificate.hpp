#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/CertificateValidationResults.hpp>
#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bedrock::certificates {

class TrustStore;
class X509CertificateChain;

namespace detail {
class CertificateAccess;
}

/// An X.509 certificate, or none: a default-constructed one is empty. Copies share what they hold, which
/// never changes; any number of threads may use them.
///
/// An empty certificate has no key and is valid for nothing; asked for its content or its validation it
/// raises `X509CertificateException`.
class BEDROCK_CRYPTO_EXPORT X509Certificate {
public:
    X509Certificate() = default;

    /// @param bytes  one certificate in DER and nothing else, or a text with one block CERTIFICATE of PEM: what
    ///               stands round it doesn't matter (RFC 7468 section 2)
    /// @throws X509CertificateException  if they are no certificate
    explicit X509Certificate(const std::vector<unsigned char>& bytes);

    bool empty() const noexcept { return !content; }

    /// The size of the key in bits; of an RSA key, 8 times the length of its modulus. 0 if there is
    /// none, or one of a kind that OpenSSL doesn't know.
    std::size_t getKeySize() const;

    /// Big-endian, without leading zeros; empty if there is no RSA key.
    std::vector<unsigned char> getModulus() const;

    /// Big-endian, without leading zeros; empty if there is no RSA key.
    std::vector<unsigned char> getPublicExponent() const;

    /// Whether its key usage allows signing documents: there is no such extension, or it names
    /// digitalSignature or nonRepudiation (RFC 5280 section 4.2.1.3).
    bool isValidForDigitalSigning() const;

    /// The Base64 form of the certificate on one line.
    std::string getAsString() const;

    /// The certificate in DER.
    std::vector<unsigned char> getAsByteArray() const;

    /// SHA-256 over the DER form, as 64 lower-case hexadecimal digits.
    std::string getSHA256Fingerprint() const;

    /// The subject as one line of UTF-8, in the manner of RFC 2253.
    std::string getSubject() const;

    /// Checks, in this order: whether a chain leads through certificates of `chain` to one of `trustStore`,
    /// with all that RFC 5280 section 6 asks, name constraints and policies included, at the time that
    /// `options` says; whether the certificate is there for signing; whether the chain is strong enough. Any
    /// certificate of the store ends a chain, be it self-signed or not. Certificates of `chain` that lead
    /// nowhere don't stand in the way of others: up to 20 of them are passed over.
    ///
    /// There for signing means: an RSA key, which isn't kept to RSA-PSS; `isValidForDigitalSigning`; and at
    /// least one of code signing, e-mail protection and document signing (RFC 9336) that every extended key
    /// usage of the chain allows. A certificate without that extension allows all of them, as does one with
    /// anyExtendedKeyUsage; the usages of an issuer limit those of the certificates below it.
    ///
    /// Policies are checked from any policy on: a chain fails by them only if a certificate in it requires an
    /// explicit policy that the others don't share.
    CertificateValidationResults validateCertificate(const X509CertificateChain& chain,
                                                     const CertificateValidationOptions& options,
                                                     const TrustStore& trustStore) const;

private:
    friend class detail::CertificateAccess;
    struct Content;

    std::shared_ptr<const Content> content;
};

} // namespace bedrock::certificates
