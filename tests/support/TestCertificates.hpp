#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace opc::test {

/// A pair of RSA keys of that size, made once for each program.
inline const bedrock::crypto::RsaKeyPair& keysOf(std::size_t bits) {
    static std::map<std::size_t, bedrock::crypto::RsaKeyPair> made;
    const auto found = made.find(bits);
    return found != made.end() ? found->second
                               : made.emplace(bits, bedrock::crypto::generateRsaKeyPair(bits)).first->second;
}

/// A certificate made for a test, with its private key.
struct Identity {
    std::shared_ptr<EVP_PKEY> key;
    std::shared_ptr<X509> content;
    bedrock::certificates::X509Certificate certificate;

    /// The private key as PKCS#8 in DER.
    std::vector<unsigned char> getPrivateKey() const;
};

/// Names and values of extensions in the syntax of OpenSSL's configuration.
using Extensions = std::vector<std::pair<std::string, std::string>>;

/// The input for a certificate. Its validity is fixed, so that no test depends on today's date. The default reaches
/// past every day on which a test might run.
struct CertificateRecipe {
    std::string subject = "Signer";
    const Identity* issuer = nullptr; ///< null: it signs itself
    std::size_t rsaBits = 2048;       ///< 0 for a key on the curve P-256
    std::shared_ptr<EVP_PKEY> key;    ///< used as it is, if set
    std::string notBefore = "20000101000000Z";
    std::string notAfter = "99991231235959Z";
    /// The extensions, as in `Extensions`; an empty text means none.
    /// @{
    std::string basicConstraints;
    std::string keyUsage;
    std::string extendedKeyUsage;
    /// @}
    Extensions furtherExtensions;
    const EVP_MD* digest = EVP_sha256();
};

/// RSA keys are made once for each size: all certificates of a size share one.
Identity makeIdentity(const CertificateRecipe& recipe);

/// @param change  makes the certificate of a signer different from the usual one
Identity makeSigner(const Identity* issuer, const std::function<void(CertificateRecipe&)>& change = {});

/// An issuer of certificates, on an elliptic curve.
Identity makeIssuer(const std::string& subject, const Identity* issuer = nullptr);

/// A public RSA key with some odd modulus of that many bytes.
/// @param exponent  in the byte order of the machine
std::shared_ptr<EVP_PKEY> makePublicKey(std::size_t modulusSize, std::vector<unsigned char> exponent);

/// A key of 2048 bits that is limited to RSA-PSS.
std::shared_ptr<EVP_PKEY> makePssKey();

/// A revocation list in DER, which names these certificates.
/// @param ofEntries  extensions of each of them
std::vector<unsigned char> makeRevocationList(const Identity& issuer,
                                              const std::vector<const Identity*>& revoked,
                                              const std::string& lastUpdate, const std::string& nextUpdate,
                                              const Extensions& extensions = {},
                                              const EVP_MD* digest = EVP_sha256(),
                                              const Extensions& ofEntries = {});

} // namespace opc::test
