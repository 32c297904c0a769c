#pragma once

#include "xml/LongTags.hpp"

#include <opc/core/InputStream.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace opc::model {

/// The bytes of a stream that are at hand: what was read and isn't done with.
class DocumentWindow {
public:
    explicit DocumentWindow(InputStream& stream) : stream(stream), buffer(new unsigned char[capacity]) {
        at = end = text(0);
    }

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
        if (left > capacity / 2)
            grow(done, left);
        else
            std::memmove(buffer.get(), buffer.get() + done, left);
        offset += done;
        const std::uint64_t got =
            std::min<std::uint64_t>(stream.read(buffer.get() + left, capacity - left), capacity - left);
        at = text(0);
        end = text(left + static_cast<std::size_t>(got));
        return got != 0;
    }

private:
    static constexpr std::size_t FIRST_CAPACITY = 32768;

    const char* text(std::size_t place) const { return reinterpret_cast<const char*>(buffer.get()) + place; }

    void grow(std::size_t done, std::size_t left) {
        std::unique_ptr<unsigned char[]> larger(new unsigned char[2 * capacity]);
        std::memcpy(larger.get(), buffer.get() + done, left);
        buffer = std::move(larger);
        capacity *= 2;
    }

    InputStream& stream;
    std::size_t capacity = FIRST_CAPACITY;
    std::unique_ptr<unsigned char[]> buffer;
    std::uint64_t offset = 0;
};

} // namespace opc::model
