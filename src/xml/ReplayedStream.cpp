#include "xml/ReplayedStream.hpp"

#include <algorithm>

namespace opc::model {

bool ReplayedStream::readAhead(std::vector<unsigned char>& bytes, std::size_t limit) {
    constexpr std::size_t BLOCK = 4096;
    bytes.clear();
    ahead = &bytes;
    std::size_t filled = 0;
    try {
        while (filled < limit && !stream.isDone()) {
            bytes.resize(std::max(filled + BLOCK, filled * 2));
            filled += static_cast<std::size_t>(std::min<std::uint64_t>(
                stream.read(bytes.data() + filled, bytes.size() - filled), bytes.size() - filled));
        }
        bytes.resize(filled);
        return stream.isDone();
    } catch (...) {
        bytes.resize(filled);
        failure = std::current_exception();
        return false;
    }
}

void ReplayedStream::open() {
}

std::uint64_t ReplayedStream::read(unsigned char* buffer, std::uint64_t count) {
    if (ahead != nullptr && position < ahead->size()) {
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, ahead->size() - position));
        std::copy_n(ahead->data() + position, taken, buffer);
        position += taken;
        return taken;
    }
    if (failure)
        std::rethrow_exception(failure);
    return stream.read(buffer, count);
}

bool ReplayedStream::isDone() const {
    return (ahead == nullptr || position == ahead->size()) && !failure && stream.isDone();
}

void ReplayedStream::close() {
}

} // namespace opc::model
