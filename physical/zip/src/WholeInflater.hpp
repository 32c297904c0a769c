#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <memory>

namespace opc::physical::zip {

/// Expands Deflate data that lies in memory, each with one call: larger data in less time than `Inflater`. All that
/// `Inflater` takes comes out alike; a few codes that make no sense, which `Inflater` refuses, are taken as well,
/// so that the checksum alone tells whether the content is the right one.
class WholeInflater {
public:
    /// @return whether `size` bytes are in `output` now, neither more nor fewer than the data holds, and nothing
    ///     stands behind the data. What is wrong otherwise isn't told: `Inflater` finds that out.
    bool expand(const unsigned char* data, std::size_t count, unsigned char* output, std::size_t size);

private:
    struct Free {
        void operator()(libdeflate_decompressor* owned) const noexcept {
            ::libdeflate_free_decompressor(owned);
        }
    };

    std::unique_ptr<libdeflate_decompressor, Free> decompressor; ///< made when needed
};

} // namespace opc::physical::zip
