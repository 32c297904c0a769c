#include "OrdinaryBlock.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace opc::physical::zip {

namespace {

/// Takes bits, the lowest of each byte first. Behind the end they are 0.
class BitReader {
public:
    BitReader(const unsigned char* data, std::size_t count) : next(data), end(data + count) {}

    /// The next bits, at most 16, which stay where they are.
    unsigned look(unsigned count) noexcept {
        for (; held < count; held += 8) {
            bits |= next == end ? 0U : static_cast<std::uint32_t>(*next) << held;
            if (next == end)
                isAtEnd = true;
            else
                ++next;
        }
        return bits & ((1U << count) - 1U);
    }

    void skip(unsigned count) noexcept {
        bits >>= count;
        held -= count;
    }

    unsigned take(unsigned count) noexcept {
        const unsigned taken = look(count);
        skip(count);
        return taken;
    }

    /// Whether there were fewer bits than were looked at.
    bool isExhausted() const noexcept { return isAtEnd; }

private:
    const unsigned char* next;
    const unsigned char* end;
    std::uint32_t bits = 0;
    unsigned held = 0; ///< bits
    bool isAtEnd = false;
};

constexpr unsigned LENGTH_CODES = 19;
constexpr unsigned LONGEST_LENGTH_CODE = 7;
constexpr unsigned MOST_LITERALS = 286; ///< with the lengths of matches
constexpr unsigned MOST_DISTANCES = 30;
constexpr unsigned LONGEST_CODE = 15;
constexpr unsigned END_OF_BLOCK = 256;

/// Whether codes of these lengths are complete: each sequence of bits begins with exactly one of them.
template <typename Iterator>
bool isComplete(Iterator first, Iterator last, unsigned longest) noexcept {
    unsigned used = 0;
    for (; first != last; ++first)
        used += *first == 0 ? 0U : 1U << (longest - *first);
    return used == 1U << longest;
}

/// Reads the lengths of codes, which are coded themselves.
class LengthCode {
public:
    /// @return whether the code is complete
    bool read(BitReader& bits, unsigned count) noexcept {
        constexpr std::array<unsigned char, LENGTH_CODES> ORDER = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                   11, 4,  12, 3, 13, 2, 14, 1, 15};
        std::array<unsigned char, LENGTH_CODES> lengths{};
        for (unsigned i = 0; i < count; ++i)
            lengths[ORDER[i]] = static_cast<unsigned char>(bits.take(3));
        if (!isComplete(lengths.begin(), lengths.end(), LONGEST_LENGTH_CODE))
            return false;
        unsigned code = 0;
        for (unsigned length = 1; length <= LONGEST_LENGTH_CODE; ++length, code <<= 1U)
            for (unsigned symbol = 0; symbol < LENGTH_CODES; ++symbol)
                if (lengths[symbol] == length)
                    enter(code++, symbol, length);
        return true;
    }

    unsigned takeSymbol(BitReader& bits) const noexcept {
        const Entry entry = entries[bits.look(LONGEST_LENGTH_CODE)];
        bits.skip(entry.length);
        return entry.symbol;
    }

private:
    struct Entry {
        unsigned char symbol;
        unsigned char length;
    };

    /// Enters a symbol wherever the next bits begin with its code. The first bit of a code comes first, so it is the lowest.
    void enter(unsigned code, unsigned symbol, unsigned length) noexcept {
        unsigned reversed = 0;
        for (unsigned i = 0; i < length; ++i)
            reversed |= (code >> i & 1U) << (length - 1 - i);
        for (unsigned i = reversed; i < entries.size(); i += 1U << length)
            entries[i] = {static_cast<unsigned char>(symbol), static_cast<unsigned char>(length)};
    }

    std::array<Entry, 1U << LONGEST_LENGTH_CODE> entries{};
};

/// @return whether there are exactly that many
bool readLengths(BitReader& bits, const LengthCode& code, unsigned char* lengths, unsigned count) noexcept {
    for (unsigned i = 0; i < count && !bits.isExhausted();) {
        const unsigned symbol = code.takeSymbol(bits);
        if (symbol <= LONGEST_CODE) {
            lengths[i++] = static_cast<unsigned char>(symbol);
            continue;
        }
        if (symbol == 16 && i == 0)
            return false;
        const unsigned char repeated = symbol == 16 ? lengths[i - 1] : static_cast<unsigned char>(0);
        const unsigned times = symbol == 16   ? 3 + bits.take(2)
                               : symbol == 17 ? 3 + bits.take(3)
                                              : 11 + bits.take(7);
        if (times > count - i)
            return false;
        std::fill_n(lengths + i, times, repeated);
        i += times;
    }
    return !bits.isExhausted();
}

} // namespace

bool isOrdinaryBlock(const unsigned char* data, std::size_t count) noexcept {
    constexpr unsigned LAST_WITH_OWN_CODES = 0b101;
    BitReader bits(data, count);
    if (bits.take(3) != LAST_WITH_OWN_CODES)
        return false;
    const unsigned literals = 257 + bits.take(5);
    const unsigned distances = 1 + bits.take(5);
    const unsigned lengthCodes = 4 + bits.take(4);
    LengthCode code;
    std::array<unsigned char, MOST_LITERALS + MOST_DISTANCES> lengths; // not cleared
    if (literals > MOST_LITERALS || distances > MOST_DISTANCES || !code.read(bits, lengthCodes) ||
        !readLengths(bits, code, lengths.data(), literals + distances) || lengths[END_OF_BLOCK] == 0)
        return false;
    unsigned char* const firstDistance = lengths.data() + literals;
    return isComplete(lengths.data(), firstDistance, LONGEST_CODE) &&
           isComplete(firstDistance, firstDistance + distances, LONGEST_CODE);
}

} // namespace opc::physical::zip
