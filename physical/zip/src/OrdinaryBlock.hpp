#pragma once

#include <cstddef>

namespace opc::physical::zip {

/// Whether Deflate data begins with its last block, whose codes are its own, are complete and keep to the limits of
/// RFC 1951, 3.2.7. All decoders read such data alike. Of other codes some refuse what others read.
bool isOrdinaryBlock(const unsigned char* data, std::size_t count) noexcept;

} // namespace opc::physical::zip
