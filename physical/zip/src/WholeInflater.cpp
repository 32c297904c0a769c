#include "WholeInflater.hpp"

#include <new>

namespace opc::physical::zip {

bool WholeInflater::expand(const unsigned char* data, std::size_t count, unsigned char* output,
                           std::size_t size) {
    return count != 0 && expandStart(data, count, output, size) == count;
}

std::size_t WholeInflater::expandFirstBlock(const unsigned char* data, std::size_t count,
                                            unsigned char* output, std::size_t size) {
    constexpr unsigned char IS_LAST = 1;
    copy.assign(data, data + count);
    copy.front() |= IS_LAST;
    return expandStart(copy.data(), count, output, size);
}

/// @return how many bytes of data were taken up to the end of the last block; 0 if there is no end or another size
std::size_t WholeInflater::expandStart(const unsigned char* data, std::size_t count, unsigned char* output,
                                       std::size_t size) {
    if (!decompressor)
        decompressor.reset(::libdeflate_alloc_decompressor());
    if (!decompressor)
        throw std::bad_alloc();
    std::size_t taken = 0;
    std::size_t got = 0;
    const bool isExpanded = ::libdeflate_deflate_decompress_ex(decompressor.get(), data, count, output, size,
                                                               &taken, &got) == LIBDEFLATE_SUCCESS;
    return isExpanded && got == size ? taken : 0;
}

} // namespace opc::physical::zip
