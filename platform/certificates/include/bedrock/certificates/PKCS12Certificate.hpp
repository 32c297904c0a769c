#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/crypto/Export.hpp>

#include <memory>
#include <string>
#include <vector>

namespace bedrock::certificates {

/// A PKCS#12 bundle (RFC 7292): a private key, its certificate, and further certificates. Copies share their data; the
/// private exponent is overwritten when the last copy is destroyed.
class BEDROCK_CRYPTO_EXPORT PKCS12Certificate {
public:
    /// @param bytes     the bundle in DER
    /// @param password  in UTF-8; overwrite it after use
    /// @throws CertificateException  the bytes aren't a bundle, the password is wrong, the private key isn't an RSA key, or
    ///         the bundle is encrypted with an old algorithm (such as RC2) and the legacy provider of OpenSSL isn't
    ///         installed
    PKCS12Certificate(const std::vector<unsigned char>& bytes, const std::string& password);

    /// The certificate of the private key; empty without a certificate or a key.
    const X509Certificate& getCertificate() const noexcept { return certificate; }

    /// All other certificates, in the order of the bundle.
    const X509CertificateChain& getCAChain() const noexcept { return chain; }

    /// Big-endian, without leading zeros; empty if the bundle has no private key. The caller owns this copy of the secret:
    /// overwrite it after use.
    std::vector<unsigned char> getPrivateExponent() const;

private:
    struct Key;

    X509Certificate certificate;
    X509CertificateChain chain;
    std::shared_ptr<const Key> key;
};

} // namespace bedrock::certificates
