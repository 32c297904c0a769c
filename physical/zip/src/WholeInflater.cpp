#include "WholeInflater.hpp"

#include <new>

namespace opc::physical::zip {

bool WholeInflater::expand(const unsigned char* data, std::size_t count, unsigned char* output,
                           std::size_t size) {
    if (!decompressor)
        decompressor.reset(::libdeflate_alloc_decompressor());
    if (!decompressor)
        throw std::bad_alloc();
    std::size_t taken = 0;
    std::size_t got = 0;
    return ::libdeflate_deflate_decompress_ex(decompressor.get(), data, count, output, size, &taken, &got) ==
               LIBDEFLATE_SUCCESS &&
           taken == count && got == size;
}

} // namespace opc::physical::zip
