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

/// Checks a signature value and then the certificate it was made by.
///
/// First the value: it must be the RSA signature, by the certificate's key, over the digest of `signedBytes`.
/// Then a certificate whose fingerprint the store holds is accepted. Any other must be valid at the time of
/// signing (see `X509Certificate::validateCertificate`). The codes of the status:
///
/// | Code | Cause                                                                             |
/// | ---- | --------------------------------------------------------------------------------- |
/// | 0    | the signature holds, and the certificate is known or valid                        |
/// | 1    | the signature value was made over other bytes, by another key or by another digest |
/// | 2    | the signature value isn't as long as the key's modulus                            |
/// | 3    | a certificate of the chain had expired                                            |
/// | 4    | a certificate of the chain wasn't valid yet                                       |
/// | 5    | the chain doesn't reach a trusted certificate                                     |
/// | 6    | the chain ends in a self-signed certificate that isn't trusted                    |
/// | 7    | the certificate, by its usages or an issuer's, isn't there for signing            |
/// | 8    | an issuer wasn't allowed to issue, or another rule of chains is broken            |
/// | 10   | a certificate of the chain is revoked                                             |
/// | 11   | a key or a digest of the chain is too weak                                        |
/// | 16   | a certificate of the chain wasn't signed by its issuer's key                      |
/// | 19   | no usable revocation list covers the certificate, though lists are asked for      |
///
/// Raised as `CodesigningException`, since nothing could be checked:
///
/// | Code | Cause                                                                             |
/// | ---- | --------------------------------------------------------------------------------- |
/// | 12   | the cryptographic services failed                                                 |
/// | 13   | the certificate is empty                                                          |
/// | 15   | the options name no known method, digest or padding, or the key doesn't fit them  |
/// | 17   | the certificate's key is unusable                                                 |
/// | 18   | the digest can't be computed                                                      |
/// | 19   | the certificates or revocation lists given can't be used                          |
///
/// 1, 2, 12, 15, 17 and 18 tell of the signature, the others of the certificate chain.
///
/// @tparam Bytes          a sequence of bytes; a `std::vector<unsigned char>` isn't copied
/// @param signedBytes     what was signed
/// @param signatureValue  any bytes
/// @param signedTime      when the signature says that it was made: its own claim, not a proof. The
/// certificate is
///                        validated at that time unless the options name one; without either it is now
/// @param certificate     the signer's
/// @param chain           further certificates to build the chain with
/// @param trustStore      where the chain must end
/// @param fingerprints    the certificates that are accepted as they are
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
