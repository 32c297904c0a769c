#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/crypto/Export.hpp>

#include <memory>
#include <string>
#include <vector>

namespace bedrock::certificates {

/// A PKCS#12 bundle (RFC 7292): a private key, its certificate, and certificates beside. Copies share what
/// they hold; the private exponent is overwritten when the last of them goes.
class BEDROCK_CRYPTO_EXPORT PKCS12Certificate {
public:
    /// @param bytes     the bundle in DER
    /// @param password  in UTF-8; the caller overwrites it in time
    /// @throws CertificateException  if the bytes are no bundle, the password is wrong, the private key isn't
    /// an RSA
    ///         key, or the bundle is encrypted by an old algorithm (RC2, for instance) and OpenSSL's legacy
    ///         provider isn't installed
    PKCS12Certificate(const std::vector<unsigned char>& bytes, const std::string& password);

    /// The certificate that belongs to the private key; empty if there is none or no key.
    const X509Certificate& getCertificate() const noexcept { return certificate; }

    /// All other certificates, in the order of the bundle.
    const X509CertificateChain& getCAChain() const noexcept { return chain; }

    /// Big-endian, without leading zeros; empty if the bundle holds no private key. The caller owns this copy
    /// of the secret and overwrites it in time.
    std::vector<unsigned char> getPrivateExponent() const;

private:
    struct Key;

    X509Certificate certificate;
    X509CertificateChain chain;
    std::shared_ptr<const Key> key;
};

} // namespace bedrock::certificates
