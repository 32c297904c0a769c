#pragma once

#include <bedrock/crypto/Export.hpp>

#include <string>
#include <vector>

namespace bedrock::crypto {

/// Both halves of a key that signs: RSA, or EC on P-256, P-384 or P-521. It can be moved but not copied, and the private
/// bytes are overwritten when it is destroyed. A key that was moved from is empty, like one from the default constructor.
class BEDROCK_CRYPTO_EXPORT SigningKey {
public:
    using Bytes = std::vector<unsigned char>;

    SigningKey() = default;

    /// @param privateKey  PKCS#8 in DER
    /// @param publicKey   SubjectPublicKeyInfo in DER
    SigningKey(Bytes privateKey, Bytes publicKey) noexcept;
    SigningKey(SigningKey&& other) noexcept;
    SigningKey& operator=(SigningKey&& other) noexcept;
    ~SigningKey();

    bool empty() const noexcept { return privateKey.empty(); }
    const Bytes& getPrivateKey() const noexcept { return privateKey; }
    const Bytes& getPublicKey() const noexcept { return publicKey; }

private:
    Bytes privateKey;
    Bytes publicKey;
};

/// Reads a private key of RSA or EC, without a password: PKCS#8, PKCS#1 or SEC 1, in DER or PEM.
/// @throws utils::InvalidKey  the bytes aren't such a key; the key is protected by a password, on another curve, or its
///                            numbers don't belong together
BEDROCK_CRYPTO_EXPORT SigningKey readSigningKey(const std::vector<unsigned char>& encoded);

/// Makes a new key on a curve.
/// @param curve  P-256, P-384 or P-521
/// @throws utils::InvalidKey  another curve
/// @throws utils::Exception
BEDROCK_CRYPTO_EXPORT SigningKey generateECKey(const std::string& curve);

/// Reads a public key of RSA or EC: SubjectPublicKeyInfo, in DER or PEM.
/// @return it in DER
/// @throws utils::InvalidKey  the bytes aren't such a key, or it is on another curve than those of `SigningKey`
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> readPublicKey(const std::vector<unsigned char>& encoded);

/// What a public key consists of, big-endian; empty for a key of the other kind.
struct PublicKeyNumbers {
    std::vector<unsigned char> modulus, exponent; ///< of RSA, without leading zeros
    std::vector<unsigned char> point;             ///< of EC, uncompressed (SEC 1 section 2.3.3)
};

/// @param publicKey  SubjectPublicKeyInfo in DER
/// @throws utils::InvalidKey  the bytes aren't such a key
BEDROCK_CRYPTO_EXPORT PublicKeyNumbers getPublicKeyNumbers(const std::vector<unsigned char>& publicKey);

} // namespace bedrock::crypto
