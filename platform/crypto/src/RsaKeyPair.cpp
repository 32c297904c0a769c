#include <bedrock/crypto/RsaKeyPair.hpp>

#include "RsaKeyCodec.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/rsa.h>

namespace bedrock::crypto {

RsaKeyPair::RsaKeyPair(std::vector<unsigned char> privateKey, std::vector<unsigned char> publicKey) noexcept
    : privateKey(std::move(privateKey)), publicKey(std::move(publicKey)) {
}

RsaKeyPair::RsaKeyPair(RsaKeyPair&& other) noexcept = default;

// The other pair gets the bytes of this one, and overwrites them.
RsaKeyPair& RsaKeyPair::operator=(RsaKeyPair&& other) noexcept {
    privateKey.swap(other.privateKey);
    publicKey.swap(other.publicKey);
    return *this;
}

RsaKeyPair::~RsaKeyPair() {
    OPENSSL_cleanse(privateKey.data(), privateKey.size());
}

RsaKeyPair generateRsaKeyPair(std::size_t bits) {
    if (bits != 1024 && bits != 2048 && bits != 4096)
        throw utils::InvalidKey("RSA keys have 1024, 2048 or 4096 bits.");
    const openssl::ErrorScope scope;
    const openssl::PkeyPtr key(EVP_RSA_gen(bits));
    if (!key)
        openssl::fail<utils::Exception>("An RSA key can't be made.");
    return RsaKeyPair(encodePrivateKey(*key), encodePublicKey(*key));
}

} // namespace bedrock::crypto
