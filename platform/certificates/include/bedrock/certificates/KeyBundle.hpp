#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/SigningKey.hpp>

#include <string>
#include <vector>

namespace bedrock::certificates {

/// What a PKCS#12 bundle (RFC 7292) has for signing.
struct KeyBundle {
    crypto::SigningKey key;              ///< empty if the bundle has none
    X509Certificate certificate;         ///< of the key; empty if the bundle has none
    std::vector<X509Certificate> others; ///< in the order of the bundle
};

/// @param bytes     the bundle in DER
/// @param password  in UTF-8; overwrite it after use
/// @throws CertificateException  the bytes aren't a bundle, the password is wrong, the key can't sign, or the bundle is
///         encrypted with an old algorithm (such as RC2) and the legacy provider of OpenSSL isn't installed
BEDROCK_CRYPTO_EXPORT KeyBundle readKeyBundle(const std::vector<unsigned char>& bytes,
                                              const std::string& password);

} // namespace bedrock::certificates
