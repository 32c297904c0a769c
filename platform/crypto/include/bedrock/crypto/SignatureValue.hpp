#pragma once

#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace bedrock::crypto {

/// How a signature value is made out of a digest.
enum class SignatureScheme {
    RSAPKCS1, ///< RSASSA-PKCS1-v1_5 (RFC 8017 section 8.2)
    RSAPSS,   ///< RSASSA-PSS (RFC 8017 section 8.1), with MGF1 over the same digest and a salt of its length
    ECDSA, ///< r and s, each as long as the order of the curve, one behind the other (RFC 6931 section 2.3.6)
};

/// What a public key is.
struct PublicKeyKind {
    enum class Algorithm {
        RSA,
        RSAPSS, ///< an RSA key that is limited to RSA-PSS
        EC,
        Other,
    };

    Algorithm algorithm = Algorithm::Other;
    std::size_t bits = 0;
    std::string curve; ///< P-256, P-384 or P-521; empty for other curves and other keys
};

/// What a check of a signature value says.
enum class SignatureValueStatus {
    Right,
    RightWithoutNull, ///< but for the NULL that RFC 8017 requires in the parameters of the digest's algorithm
    Wrong,
};

/// The result of a check, and the key that was read for it.
struct CheckedSignatureValue {
    SignatureValueStatus status;
    PublicKeyKind key;
};

/// Public keys are SubjectPublicKeyInfo in DER, private ones PKCS#8 in DER.
/// @throws utils::InvalidKey  the bytes aren't such a key; an RSA key has more than 16,384 bits, or an exponent that is 1,
///                            even or longer than 64 bits
/// @throws utils::Exception
/// @{

BEDROCK_CRYPTO_EXPORT PublicKeyKind describePublicKey(const std::vector<unsigned char>& publicKey);

/// Makes an RSA key of any size from its numbers, which are big-endian.
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> makeRSAPublicKey(const std::vector<unsigned char>& modulus,
                                                                  const std::vector<unsigned char>& exponent);

/// Makes a key on a curve from its point.
/// @param curve  P-256, P-384 or P-521
/// @param point  in the form of SEC 1 section 2.3.3
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> makeECPublicKey(const std::string& curve,
                                                                 const std::vector<unsigned char>& point);

/// @param content  what was signed, not its digest
/// @return `Wrong` also if the key can't be used with this scheme
BEDROCK_CRYPTO_EXPORT CheckedSignatureValue checkSignatureValue(const std::vector<unsigned char>& publicKey,
                                                                SignatureScheme scheme,
                                                                DigestAlgorithm algorithm,
                                                                const std::string& content,
                                                                const std::vector<unsigned char>& value);

/// @param content  what to sign, not its digest
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char>
makeSignatureValue(const std::vector<unsigned char>& privateKey, SignatureScheme scheme,
                   DigestAlgorithm algorithm, const std::string& content);

/// @}

} // namespace bedrock::crypto
