#pragma once

#include <bedrock/crypto/Export.hpp>

#include <vector>

namespace bedrock::crypto::utils {

/// Overwrites bytes that were secret, in a way that no compiler leaves out. Their number stays.
BEDROCK_CRYPTO_EXPORT void cleanse(std::vector<unsigned char>& bytes) noexcept;

} // namespace bedrock::crypto::utils
