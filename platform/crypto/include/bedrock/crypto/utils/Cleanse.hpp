#pragma once

#include <bedrock/crypto/Export.hpp>

#include <vector>

namespace bedrock::crypto::utils {

/// Overwrites secret bytes, in a way that compilers don't optimise away. The size of the vector stays.
BEDROCK_CRYPTO_EXPORT void cleanse(std::vector<unsigned char>& bytes) noexcept;

} // namespace bedrock::crypto::utils
