#include "WholeInflater.hpp"

#include <new>

namespace opc::physical::zip {

bool WholeInflater::expand(const unsigned char* data, std::size_t count, unsigned char* output,
                           std::size_t size) {
    if (!decompressor)
        decompressor.reset(::libdeflate_alloc_decompressor());
    if (!decompressor)
        throw std::bad_alloc();
    return ::libdeflate_deflate_decompress(decompressor.get(), data, count, output, size, nullptr) ==
           LIBDEFLATE_SUCCESS;
}

} // namespace opc::physical::zip
