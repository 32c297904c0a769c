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

/// An X.509 certificate, or an empty value, which the default constructor makes. Copies share their data, which never
/// changes; any number of threads can use them.
///
/// An empty certificate has no key and can't be used for anything. Its functions for content and validation throw
/// `X509CertificateException`.
class BEDROCK_CRYPTO_EXPORT X509Certificate {
public:
    X509Certificate() = default;

    /// @param bytes  exactly one certificate in DER, or a text with one CERTIFICATE block in PEM; text around the block is
    ///               ignored (RFC 7468 section 2)
    /// @throws X509CertificateException  the bytes aren't a certificate
    explicit X509Certificate(const std::vector<unsigned char>& bytes);

    bool empty() const noexcept { return !content; }

    /// The size of the key in bits; for an RSA key, 8 times the length of its modulus. 0 without a key, or for a kind of key
    /// that OpenSSL doesn't know.
    std::size_t getKeySize() const;

    /// Big-endian, without leading zeros; empty if there is no RSA key.
    std::vector<unsigned char> getModulus() const;

    /// Big-endian, without leading zeros; empty if there is no RSA key.
    std::vector<unsigned char> getPublicExponent() const;

    /// The key as SubjectPublicKeyInfo in DER.
    std::vector<unsigned char> getPublicKey() const;

    /// Whether the key usage allows signing documents: the extension is absent, or names digitalSignature or nonRepudiation
    /// (RFC 5280 section 4.2.1.3).
    bool isValidForDigitalSigning() const;

    /// The Base64 form of the certificate on one line.
    std::string getAsString() const;

    /// The certificate in DER.
    std::vector<unsigned char> getAsByteArray() const;

    /// SHA-256 over the DER form, as 64 lower-case hexadecimal digits.
    std::string getSHA256Fingerprint() const;

    /// The subject as one line in UTF-8, in the form of RFC 2253.
    std::string getSubject() const;

    /// When the certificate is valid by its own word, in UTC: `YYYY-MM-DDThh:mm:ssZ`.
    struct Validity {
        std::string from, until;
    };
    /// @throws X509CertificateException  also if its dates can't be read
    Validity getValidity() const;

    /// The issuer in the same form.
    std::string getIssuer() const;

    /// The serial number, in decimal digits.
    std::string getSerialNumber() const;

    /// Validates the certificate. It checks in this order:
    ///
    /// 1. A chain leads through certificates of `chain` to a certificate of `trustStore` and is valid by RFC 5280 section 6,
    ///    with name constraints and policies, at the time in `options`. A chain can end in any certificate of the store,
    ///    self-signed or not. Up to 20 certificates of `chain` that don't lead to the store are ignored.
    /// 2. The certificate may sign: it has an RSA key that isn't limited to RSA-PSS or, if the options accept them, another key;
    ///    `isValidForDigitalSigning` is true, and every extended key usage of the chain allows at least one of code signing,
    ///    e-mail protection and document signing (RFC 9336, or the older 1.3.6.1.4.1.311.10.3.12).
    ///    A certificate without this extension, or with anyExtendedKeyUsage, allows all of them.
    ///    The usages of an issuer limit those of the certificates below it.
    /// 3. The algorithms of the chain are strong enough.
    ///
    /// Every policy is acceptable at first: the policies refuse a chain only if one of its certificates requires an explicit
    /// policy that the others don't share.
    CertificateValidationResults validateCertificate(const X509CertificateChain& chain,
                                                     const CertificateValidationOptions& options,
                                                     const TrustStore& trustStore) const;

private:
    friend class detail::CertificateAccess;
    struct Content;

    std::shared_ptr<const Content> content;
};

} // namespace bedrock::certificates
