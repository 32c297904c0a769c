#pragma once

#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/codesigning_verifier/CodesigningException.hpp>
#include <bedrock/codesigning_verifier/CodesigningVerificationOptions.hpp>
#include <bedrock/codesigning_verifier/CodesigningVerificationStatus.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/Export.hpp>

#include <chrono>
#include <optional>
#include <vector>

namespace bedrock::codesigning_verifier {

namespace detail {

BEDROCK_CRYPTO_EXPORT CodesigningVerificationStatus
verify(const std::vector<unsigned char>& signedBytes, const std::vector<unsigned char>& signatureValue,
       std::optional<std::chrono::system_clock::time_point> signedTime,
       const certificates::X509Certificate& certificate, const certificates::X509CertificateChain& chain,
       const certificates::TrustStore& trustStore, const FingerprintStore& fingerprints,
       const CodesigningVerificationOptions& options);

inline const std::vector<unsigned char>& asBytes(const std::vector<unsigned char>& bytes) {
    return bytes;
}

template <typename Bytes>
std::vector<unsigned char> asBytes(const Bytes& bytes) {
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
}

} // namespace detail

/// Checks a signature value, and then the certificate of the signer.
///
/// The value must be the RSA signature over the digest of `signedBytes` with the key of the certificate. If so, a certificate
/// is accepted if its fingerprint is in the store; every other certificate must be valid at the time of signing (see
/// `X509Certificate::validateCertificate`). The codes of the status:
///
/// | Code | Cause                                                                             |
/// | ---- | --------------------------------------------------------------------------------- |
/// | 0    | the signature holds, and the certificate is known or valid                        |
/// | 1    | the signature value was made over other bytes, by another key or with another digest |
/// | 2    | the signature value doesn't have the length of the key's modulus                  |
/// | 3    | a certificate of the chain had expired                                            |
/// | 4    | a certificate of the chain wasn't valid yet                                       |
/// | 5    | the chain doesn't reach a trusted certificate                                     |
/// | 6    | the chain ends in a self-signed certificate that isn't trusted                    |
/// | 7    | the usages of the certificate or of an issuer don't allow it to sign              |
/// | 8    | an issuer wasn't allowed to issue, or another rule of chains is broken            |
/// | 10   | a certificate of the chain is revoked                                             |
/// | 11   | a key or a digest of the chain is too weak                                        |
/// | 16   | a certificate of the chain wasn't signed by its issuer's key                      |
/// | 19   | revocation lists are required, and none that can be used covers the certificate   |
///
/// It throws `CodesigningException` with these codes if the check couldn't be made:
///
/// | Code | Cause                                                                             |
/// | ---- | --------------------------------------------------------------------------------- |
/// | 12   | the cryptographic services failed                                                 |
/// | 13   | the certificate is empty                                                          |
/// | 15   | the method, digest or padding is unknown, or doesn't fit the key                  |
/// | 17   | the key of the certificate can't be used                                          |
/// | 18   | the digest can't be computed                                                      |
/// | 19   | the given certificates or revocation lists can't be used                          |
///
/// 1, 2, 12, 15, 17 and 18 are about the signature, the others about the certificate chain.
///
/// @tparam Bytes          a sequence of bytes; a `std::vector<unsigned char>` isn't copied
/// @param signedBytes     the bytes that were signed
/// @param signatureValue  any bytes
/// @param signedTime      the time of signing that the signature claims, which proves nothing. The certificate is
///                        validated at the time in the options, else at this time, else at the present time
/// @param certificate     the certificate of the signer
/// @param chain           further certificates to build the chain with
/// @param trustStore      the certificates in which the chain can end
/// @param fingerprints    the certificates that are accepted without validation
template <typename Bytes>
CodesigningVerificationStatus
verify(const Bytes& signedBytes, const std::vector<unsigned char>& signatureValue,
       const std::optional<std::chrono::system_clock::time_point>& signedTime,
       const certificates::X509Certificate& certificate, const certificates::X509CertificateChain& chain,
       const certificates::TrustStore& trustStore, const FingerprintStore& fingerprints,
       const CodesigningVerificationOptions& options) {
    return detail::verify(detail::asBytes(signedBytes), signatureValue, signedTime, certificate, chain,
                          trustStore, fingerprints, options);
}

} // namespace bedrock::codesigning_verifier
