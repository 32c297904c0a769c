#pragma once

#include "crypto/Digest.hpp"
#include "document/SignatureDocument.hpp"

#include <opc/standard_signatures/Trust.hpp>

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/SignatureValue.hpp>

#include <vector>

namespace opc::standard_signatures {

/// The key of a signature, and the certificate of the key.
struct SignerKey {
    std::vector<unsigned char> key; ///< SubjectPublicKeyInfo
    bedrock::crypto::PublicKeyKind kind;
    bedrock::certificates::X509Certificate certificate; ///< empty if there is none
    bedrock::crypto::SignatureValueStatus status;       ///< of the signature value by this key
};

/// Finds the key that made the signature value, among those that the signature names. All must fit together: a key and a
/// certificate have the same key, and the signer's certificate is the one that the signed properties name.
/// If it names none, the keys and certificates that the caller trusts are tried.
/// @param certificates  those of the signature and of its certificate parts
/// @param trusted       null if the caller trusts nobody
/// @param signedInfo    the canonical form
/// @param tries         how many keys may still be tried; becomes less
/// @param digester      for the digests of certificates
/// @throws Refusal  with `NoKey`, `KeyMismatch`, `CertificateMismatch`, `AlgorithmNotAccepted` or `BeyondLimit`
SignerKey findSignerKey(const SignatureDocument& document,
                        const std::vector<bedrock::certificates::X509Certificate>& certificates,
                        const TrustPolicy* trusted, const std::string& signedInfo, std::size_t& tries,
                        Digester& digester);

} // namespace opc::standard_signatures
