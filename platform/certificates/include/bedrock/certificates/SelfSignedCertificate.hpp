#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/SigningKey.hpp>

#include <string>

namespace bedrock::certificates {

/// Makes a certificate that its own key has signed, to try signatures with, or for people who exchange certificates among
/// themselves. It is for signing documents, and not for issuing certificates. It is valid from now on.
/// @param name  the common name of subject and issuer, in UTF-8, of 1 to 64 characters (RFC 5280 appendix A.1)
/// @param days  how long it is valid
/// @throws crypto::utils::InvalidKey  the key can't be used
/// @throws CertificateException       the name or the days can't stand in a certificate
BEDROCK_CRYPTO_EXPORT X509Certificate makeSelfSignedCertificate(const crypto::SigningKey& key,
                                                                const std::string& name, unsigned days);

} // namespace bedrock::certificates
