#include "ByteSource.hpp"

#include <algorithm>

namespace opc::physical::zip {

int FileBytes::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                      std::size_t& got) noexcept {
    const bool goesOn = offset >= lastEnd && offset - lastEnd < window.size();
    lastEnd = offset + count;
    if (offset < windowStart || offset + count > windowStart + windowSize) {
        if (!goesOn || count >= window.size())
            return file.readAt(offset, buffer, count, got);
        windowSize = 0;
        windowStart = offset;
        if (const int error = file.readAt(offset, window.data(), window.size(), windowSize))
            return error;
    }
    const auto start = static_cast<std::size_t>(offset - windowStart);
    got = std::min(count, windowSize - start);
    std::copy_n(window.data() + start, got, buffer);
    return 0;
}

int MemoryBytes::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                        std::size_t& got) noexcept {
    const std::uint64_t left = bytes->size() - std::min<std::uint64_t>(offset, bytes->size());
    got = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    std::copy_n(bytes->data() + (bytes->size() - left), got, buffer);
    return 0;
}

} // namespace opc::physical::zip
