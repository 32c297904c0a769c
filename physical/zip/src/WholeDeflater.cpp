#include "WholeDeflater.hpp"

#include <new>

namespace opc::physical::zip {

namespace {

/// For smaller contents, the larger tables of the levels up to the usual one take more time to clear, a third of all,
/// than they are worth: they save less than 2 % in size.
constexpr std::size_t SMALL = 1536;
constexpr int USUAL_LEVEL = 6;

} // namespace

std::size_t WholeDeflater::bound(std::size_t count) noexcept {
    return ::libdeflate_deflate_compress_bound(nullptr, count);
}

std::size_t WholeDeflater::compress(int level, const unsigned char* bytes, std::size_t count,
                                    unsigned char* output) {
    if (count <= SMALL && level <= USUAL_LEVEL)
        level = 1;
    auto& compressor = compressors.at(static_cast<std::size_t>(level));
    if (!compressor)
        compressor.reset(::libdeflate_alloc_compressor(level));
    if (!compressor)
        throw std::bad_alloc();
    return ::libdeflate_deflate_compress(compressor.get(), bytes, count, output, bound(count));
}

} // namespace opc::physical::zip
