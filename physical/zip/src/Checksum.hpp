#pragma once

#include <cstddef>
#include <cstdint>

namespace opc::physical::zip {

/// @return the CRC-32 of the content that `checksum` is that of, with these bytes behind it; 0 is that of nothing
std::uint32_t addToChecksum(std::uint32_t checksum, const unsigned char* bytes, std::size_t count) noexcept;

} // namespace opc::physical::zip
