#include <bedrock/crypto/utils/Cleanse.hpp>

namespace bedrock::crypto::utils {

void cleanse(std::vector<unsigned char>& bytes) noexcept {
    for (volatile unsigned char& byte : bytes) // a compiler keeps each write to a volatile object
        byte = 0;
}

} // namespace bedrock::crypto::utils
