#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opc::physical::zip {

/// Takes numbers of some bits out of bytes, from the lowest bit of each byte on, as Deflate puts them there (RFC 1951,
/// 3.1.1). At most 56 bits may be taken after each `refill`.
///
/// Behind the last byte come zeros: nothing that was taken counts before `isOverdrawn` says that it was there.
class BitInput {
public:
    BitInput(const unsigned char* data, std::size_t size) : next(data), end(data + size) {}

    void refill() {
        std::uint64_t more = 0;
        if (end - next >= static_cast<std::ptrdiff_t>(sizeof more)) {
            std::memcpy(&more, next, sizeof more);
            held |= more << count; // the bits for which there is no room come again
            next += (63 - count) / 8;
            count |= 56;
        } else {
            for (; count <= 56 && next != end; count += 8)
                held |= std::uint64_t{*next++} << count;
        }
    }

    /// All bits that are there, the next one lowest.
    std::uint64_t peek() const { return held; }

    void drop(unsigned bits) {
        held >>= bits;
        count -= static_cast<int>(bits);
    }

    unsigned take(unsigned bits) {
        const auto number = static_cast<unsigned>(held & ((std::uint64_t{1} << bits) - 1));
        drop(bits);
        return number;
    }

    /// Goes on to the next whole byte.
    void align() { drop(static_cast<unsigned>(count) % 8); }

    /// @return the next `size` bytes; null if there aren't as many. For an input that is aligned and not overdrawn.
    const unsigned char* takeBytes(std::size_t size) {
        const unsigned char* bytes = next - count / 8;
        if (static_cast<std::size_t>(end - bytes) < size)
            return nullptr;
        next = bytes + size;
        held = 0;
        count = 0;
        return bytes;
    }

    /// Whether more bits have been taken than there were.
    bool isOverdrawn() const { return count < 0; }

    /// Whether the bits of the last byte, and no more than those, may be left.
    bool isAtEnd() const { return next == end && count >= 0 && count < 8; }

private:
    const unsigned char* next; ///< byte that doesn't count yet
    const unsigned char* end;
    std::uint64_t held = 0;
    int count = 0; ///< of the bits in `held`; negative if overdrawn
};

} // namespace opc::physical::zip
