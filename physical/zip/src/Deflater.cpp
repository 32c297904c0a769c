#include "Deflater.hpp"

#include <new>

namespace opc::physical::zip {

Deflater::~Deflater() {
    if (currentLevel)
        ::deflateEnd(&stream);
}

void Deflater::start(int level) {
    if (currentLevel == level) {
        ::deflateReset(&stream);
        return;
    }
    if (currentLevel)
        ::deflateEnd(&stream);
    currentLevel.reset();
    stream = {};
    constexpr int MEMORY = 8; // zlib's default
    // Negative: without the header of the zlib format.
    if (::deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, MEMORY, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    currentLevel = level;
}

void Deflater::setInput(const unsigned char* bytes, std::size_t count, bool isLast) noexcept {
    stream.next_in = const_cast<unsigned char*>(bytes); // zlib doesn't write to it
    stream.avail_in = static_cast<uInt>(count);
    last = isLast;
}

std::size_t Deflater::compress(unsigned char* output, std::size_t count) noexcept {
    stream.next_out = output;
    stream.avail_out = static_cast<uInt>(count);
    ::deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH);
    return count - stream.avail_out;
}

} // namespace opc::physical::zip
