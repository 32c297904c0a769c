#include <bedrock/crypto/RsaKeyPair.hpp>

#include <bedrock/crypto/utils/Cleanse.hpp>

#include <utility>

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
    utils::cleanse(privateKey);
}

} // namespace bedrock::crypto
