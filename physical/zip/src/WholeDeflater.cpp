#include "WholeDeflater.hpp"

#include <new>

namespace opc::physical::zip {

namespace {

constexpr int MAXIMUM = 9;

/// Up to this size a content comes out hardly larger on the lowest level (by 2 % at most with XML), in half of
/// the time: there is little to search, and the tables that the search begins with are half as large.
constexpr std::size_t SMALL = 1536;

} // namespace

std::size_t WholeDeflater::bound(std::size_t count) noexcept {
    return ::libdeflate_deflate_compress_bound(nullptr, count);
}

std::size_t WholeDeflater::compress(int level, const unsigned char* bytes, std::size_t count,
                                    unsigned char* output) {
    const int suitable = count <= SMALL && level < MAXIMUM ? 1 : level;
    auto& compressor = compressors.at(static_cast<std::size_t>(suitable));
    if (!compressor)
        compressor.reset(::libdeflate_alloc_compressor(suitable));
    if (!compressor)
        throw std::bad_alloc();
    return ::libdeflate_deflate_compress(compressor.get(), bytes, count, output, bound(count));
}

} // namespace opc::physical::zip
