#include "Inflater.hpp"

#include <algorithm>
#include <new>

namespace opc::physical::zip {

Inflater::Inflater() {
    if (::inflateInit2(&stream, -MAX_WBITS) != Z_OK) // negative: without the header of the zlib format
        throw std::bad_alloc();
}

void Inflater::restart() noexcept {
    ::inflateReset(&stream);
    stream.avail_in = 0;
}

void Inflater::setInput(const unsigned char* bytes, std::size_t count) noexcept {
    stream.next_in = const_cast<unsigned char*>(bytes); // zlib doesn't write to it
    stream.avail_in = static_cast<uInt>(count);
}

Inflater::Result Inflater::expand(unsigned char* output, std::size_t count, std::size_t& got) noexcept {
    constexpr std::size_t AT_MOST = 1U << 30;
    const auto room = static_cast<uInt>(std::min(count, AT_MOST));
    stream.next_out = output;
    stream.avail_out = room;
    // The stream ends within this output, so zlib needs no copy of it for later references.
    const int result = ::inflate(&stream, Z_FINISH);
    got = room - stream.avail_out;
    if (result == Z_STREAM_END)
        return Result::End;
    return result == Z_OK || result == Z_BUF_ERROR ? Result::More : Result::Damaged;
}

std::size_t Inflater::pass(unsigned char* output, std::size_t count) noexcept {
    const std::size_t passed = std::min<std::size_t>(count, stream.avail_in);
    std::copy_n(stream.next_in, passed, output);
    stream.next_in += passed;
    stream.avail_in -= static_cast<uInt>(passed);
    return passed;
}

} // namespace opc::physical::zip
