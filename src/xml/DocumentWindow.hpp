#pragma once

#include "xml/GrowingRoom.hpp"
#include "xml/LongTags.hpp"

#include <opc/core/InputStream.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opc::model {

/// The bytes of a stream that are at hand: what was read and isn't done with.
class DocumentWindow {
public:
    explicit DocumentWindow(InputStream& stream) : stream(stream) { at = end = text(0); }

    const char* at; ///< the next byte; the owner moves it on
    const char* end;

    /// The place of a byte at hand in the stream.
    std::uint64_t offsetOf(const char* byte) const {
        return offset + static_cast<std::uint64_t>(byte - text(0));
    }

    /// Reads on. Pointers to bytes at hand are void then, but for `at` and `end`.
    /// @return false if the stream has ended, or so much is at hand that it is no usual document
    bool more() {
        const auto left = static_cast<std::size_t>(end - at);
        const auto done = static_cast<std::size_t>(at - text(0));
        if (left > LONGEST_TAG || stream.isDone())
            return false;
        if (left > buffer.size() / 2)
            buffer.grow(2 * buffer.size(), buffer.data() + done, left);
        else
            std::memmove(buffer.data(), buffer.data() + done, left);
        offset += done;
        const std::size_t room = buffer.size() - left;
        const std::uint64_t got = std::min<std::uint64_t>(stream.read(buffer.data() + left, room), room);
        at = text(0);
        end = text(left + static_cast<std::size_t>(got));
        return got != 0;
    }

private:
    const char* text(std::size_t place) const { return reinterpret_cast<const char*>(buffer.data()) + place; }

    InputStream& stream;
    GrowingRoom<unsigned char, 32768> buffer;
    std::uint64_t offset = 0;
};

} // namespace opc::model
