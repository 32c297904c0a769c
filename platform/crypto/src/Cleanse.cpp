#include <bedrock/crypto/utils/Cleanse.hpp>

#include <openssl/crypto.h>

namespace bedrock::crypto::utils {

void cleanse(std::vector<unsigned char>& bytes) noexcept {
    OPENSSL_cleanse(bytes.data(), bytes.size());
}

} // namespace bedrock::crypto::utils
