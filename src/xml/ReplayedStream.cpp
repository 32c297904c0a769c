#include "xml/ReplayedStream.hpp"

#include <algorithm>
#include <new>

namespace opc::model {

void ReadAheadBuffer::grow(std::size_t larger) {
    void* const grown = std::realloc(bytes.get(), larger);
    if (grown == nullptr)
        throw std::bad_alloc();
    static_cast<void>(bytes.release());
    bytes.reset(static_cast<unsigned char*>(grown));
    room = larger;
}

std::optional<std::string_view> ReplayedStream::readAhead(ReadAheadBuffer& buffer, std::size_t limit) {
    constexpr std::size_t SMALLEST_ROOM = 4096;
    ahead = buffer.data();
    try {
        while (filled < limit && !stream.isDone()) {
            if (filled == buffer.size()) {
                buffer.grow(std::max(SMALLEST_ROOM, filled * 2));
                ahead = buffer.data();
            }
            const std::size_t room = buffer.size() - filled;
            const std::uint64_t got =
                std::min<std::uint64_t>(stream.read(buffer.data() + filled, room), room);
            if (got == 0 && !stream.isDone()) { // the document ends here for a parser
                gaveNothing = true;
                return std::nullopt;
            }
            filled += static_cast<std::size_t>(got);
        }
        if (!stream.isDone())
            return std::nullopt;
        return std::string_view(reinterpret_cast<const char*>(ahead), filled);
    } catch (...) {
        failure = std::current_exception();
        return std::nullopt;
    }
}

void ReplayedStream::open() {
}

std::uint64_t ReplayedStream::read(unsigned char* buffer, std::uint64_t count) {
    if (position < filled) {
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, filled - position));
        std::copy_n(ahead + position, taken, buffer);
        position += taken;
        return taken;
    }
    if (failure)
        std::rethrow_exception(failure);
    if (gaveNothing) {
        gaveNothing = false;
        return 0;
    }
    return stream.read(buffer, count);
}

bool ReplayedStream::isDone() const {
    return position == filled && !failure && !gaveNothing && stream.isDone();
}

void ReplayedStream::close() {
}

} // namespace opc::model
