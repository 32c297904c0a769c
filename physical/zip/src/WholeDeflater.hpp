#pragma once

#include <libdeflate.h>

#include <array>
#include <cstddef>
#include <memory>

namespace opc::physical::zip {

/// Compresses contents that are in memory to Deflate data, each with one call, faster than `Deflater`.
class WholeDeflater {
public:
    /// The largest size of the result for `count` bytes.
    static std::size_t bound(std::size_t count) noexcept;

    /// @param level   from 1 to 9; small contents use the lowest instead of the usual ones
    /// @param output  has room for `bound(count)` bytes
    /// @return the number of bytes in `output`
    std::size_t compress(int level, const unsigned char* bytes, std::size_t count, unsigned char* output);

private:
    struct Free {
        void operator()(libdeflate_compressor* owned) const noexcept { ::libdeflate_free_compressor(owned); }
    };

    std::array<std::unique_ptr<libdeflate_compressor, Free>, 10> compressors; ///< by level, made when needed
};

} // namespace opc::physical::zip
