#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace opc::physical::zip {

/// Expands Deflate data that is in memory, each with one call; larger data faster than `Inflater`. The results are
/// the same, except that it accepts a few senseless codes that `Inflater` refuses, but for an `OrdinaryBlock`. So only the
/// checksum decides whether the content is right.
class WholeInflater {
public:
    /// @return whether the data expands to exactly `size` bytes, which are in `output` now, and ends there.
    ///         `Inflater` finds out the cause of other failures
    bool expand(const unsigned char* data, std::size_t count, unsigned char* output, std::size_t size);

    /// Expands the first block alone.
    /// @return how many bytes of data it takes, the last one perhaps in part; 0 if it doesn't expand to exactly `size` bytes
    std::size_t expandFirstBlock(const unsigned char* data, std::size_t count, unsigned char* output,
                                 std::size_t size);

private:
    std::size_t expandStart(const unsigned char* data, std::size_t count, unsigned char* output,
                            std::size_t size);

    struct Free {
        void operator()(libdeflate_decompressor* owned) const noexcept {
            ::libdeflate_free_decompressor(owned);
        }
    };

    std::unique_ptr<libdeflate_decompressor, Free> decompressor; ///< made when needed
    std::vector<unsigned char> copy;                             ///< of data that must be changed
};

} // namespace opc::physical::zip
