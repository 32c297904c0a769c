#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <vector>

namespace bedrock::crypto {

/// Both halves of an RSA key in their encoded forms (see `RSAPrivateKey` and `RSAPublicKey`). It can be moved but not
/// copied, and the private bytes are overwritten when it is destroyed.
class BEDROCK_CRYPTO_EXPORT RsaKeyPair {
public:
    RsaKeyPair(std::vector<unsigned char> privateKey, std::vector<unsigned char> publicKey) noexcept;
    RsaKeyPair(RsaKeyPair&& other) noexcept;
    RsaKeyPair& operator=(RsaKeyPair&& other) noexcept;
    ~RsaKeyPair();

    const std::vector<unsigned char>& getPrivateKey() const noexcept { return privateKey; }
    const std::vector<unsigned char>& getPublicKey() const noexcept { return publicKey; }

private:
    std::vector<unsigned char> privateKey;
    std::vector<unsigned char> publicKey;
};

/// Makes a new key with the public exponent 65537.
/// @param bits  1024, 2048 or 4096
/// @throws utils::InvalidKey  `bits` is another size
/// @throws utils::Exception   the key can't be made
BEDROCK_CRYPTO_EXPORT RsaKeyPair generateRsaKeyPair(std::size_t bits);

} // namespace bedrock::crypto
