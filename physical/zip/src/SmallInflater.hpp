#pragma once

#include <cstddef>

namespace opc::physical::zip {

/// Expands Deflate data of a few hundred bytes, which lies in memory, in less time than others need for their tables.
/// @return whether `size` bytes are in `output` now, neither more nor fewer than the data holds, and nothing stands
///     behind the data. It takes what `Inflater` takes, and nothing else.
bool expandSmall(const unsigned char* data, std::size_t count, unsigned char* output, std::size_t size);

} // namespace opc::physical::zip
