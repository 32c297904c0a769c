#include <bedrock/crypto/SigningKey.hpp>

#include <bedrock/crypto/utils/Cleanse.hpp>

#include <utility>

namespace bedrock::crypto {

SigningKey::SigningKey(Bytes privateKey, Bytes publicKey) noexcept
    : privateKey(std::move(privateKey)), publicKey(std::move(publicKey)) {
}

SigningKey::SigningKey(SigningKey&& other) noexcept = default;

// The other key gets the bytes of this one, and overwrites them.
SigningKey& SigningKey::operator=(SigningKey&& other) noexcept {
    privateKey.swap(other.privateKey);
    publicKey.swap(other.publicKey);
    return *this;
}

SigningKey::~SigningKey() {
    utils::cleanse(privateKey);
}

} // namespace bedrock::crypto
