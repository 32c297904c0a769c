#include "ByteSource.hpp"

#include <algorithm>

namespace opc::physical::zip {

int WindowedBytes::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) {
    const bool goesOn = offset >= lastEnd && offset - lastEnd < READ_AHEAD;
    lastEnd = offset + count;
    if (offset < windowStart || offset + count > windowStart + windowSize) {
        const bool isEnd = offset + count == size() && count <= LARGEST_WINDOW;
        if (!isEnd && (!goesOn || count >= READ_AHEAD))
            return fetch(offset, buffer, count, got);
        if (const int error = moveWindow(offset, isEnd ? count : READ_AHEAD))
            return error;
    }
    const auto start = static_cast<std::size_t>(offset - windowStart);
    got = std::min(count, windowSize - start);
    std::copy_n(window.get() + start, got, buffer);
    return 0;
}

int WindowedBytes::moveWindow(std::uint64_t offset, std::size_t count) {
    windowSize = 0;
    windowStart = offset;
    return fetch(offset, window.get(), count, windowSize);
}

int MemoryBytes::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                        std::size_t& got) noexcept {
    const std::uint64_t left = length - std::min<std::uint64_t>(offset, length);
    got = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    std::copy_n(bytes.get() + (length - left), got, buffer);
    return 0;
}

} // namespace opc::physical::zip
