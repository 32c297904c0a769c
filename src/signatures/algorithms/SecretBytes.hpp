#pragma once

#include <bedrock/crypto/utils/Cleanse.hpp>

#include <utility>
#include <vector>

namespace opc::model {

/// Bytes of a private key, overwritten when they go out of scope.
class SecretBytes {
public:
    explicit SecretBytes(std::vector<unsigned char> bytes) noexcept : bytes(std::move(bytes)) {}
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    ~SecretBytes() { bedrock::crypto::utils::cleanse(bytes); }

    const std::vector<unsigned char>& operator*() const noexcept { return bytes; }
    const std::vector<unsigned char>* operator->() const noexcept { return &bytes; }

private:
    std::vector<unsigned char> bytes;
};

} // namespace opc::model
