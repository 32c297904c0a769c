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

/// Whether each sequence of bits begins with exactly one of the codes.
/// @param lengths  up to `Longest`; 0 for symbols without code
template <unsigned Longest>
bool areComplete(const unsigned char* lengths, std::size_t count) noexcept {
    constexpr unsigned EXCEPT_FOR_0 = (1U << Longest) - 1U;
    unsigned used = 0; // of the sequences that have the longest length
    for (std::size_t i = 0; i < count; ++i)
        used += (1U << Longest >> lengths[i]) & EXCEPT_FOR_0; // without a branch
    return used == 1U << Longest;
}

/// The first code of each length.
template <std::size_t Longest>
std::array<unsigned, Longest + 1> firstCodesOf(const unsigned char* lengths, std::size_t count) noexcept {
    std::array<unsigned, Longest + 1> counts{};
    for (std::size_t i = 0; i < count; ++i)
        ++counts[lengths[i]];
    counts[0] = 0; // symbols without code
    std::array<unsigned, Longest + 1> codes{};
    for (std::size_t length = 1; length <= Longest; ++length)
        codes[length] = (codes[length - 1] + counts[length - 1]) << 1U;
    return codes;
}

/// A code with its first bit as the lowest one, as the bits of the data are taken.
unsigned reversed(unsigned code, unsigned length) noexcept {
    unsigned bits = 0;
    for (unsigned i = 0; i < length; ++i)
        bits |= (code >> i & 1U) << (length - 1 - i);
    return bits;
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
        if (!areComplete<LONGEST_LENGTH_CODE>(lengths.data(), lengths.size()))
            return false;
        auto codes = firstCodesOf<LONGEST_LENGTH_CODE>(lengths.data(), lengths.size());
        for (unsigned symbol = 0; symbol < LENGTH_CODES; ++symbol)
            if (lengths[symbol] != 0)
                enter(codes[lengths[symbol]]++, symbol, lengths[symbol]);
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

    /// Enters a symbol wherever the next bits begin with its code.
    void enter(unsigned code, unsigned symbol, unsigned length) noexcept {
        for (unsigned i = reversed(code, length); i < entries.size(); i += 1U << length)
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

/// The bits at a place, the lowest of each byte first.
unsigned bitsAt(const unsigned char* data, std::size_t place, unsigned count) noexcept {
    unsigned bits = 0;
    for (unsigned i = 0; i < count; ++i, ++place)
        bits |= (data[place / 8] >> place % 8 & 1U) << i;
    return bits;
}

/// Whether there are only an empty stored block at a place, and one with fixed codes behind it if that isn't the last.
bool areEmptyBlocks(const unsigned char* data, std::size_t count, std::size_t place) noexcept {
    constexpr std::array<unsigned char, 6> EMPTY = {0, 0, 0xFF, 0xFF, 3, 0};
    constexpr std::size_t STORED = 4; // bytes of the first one
    const unsigned begin = bitsAt(data, place, 3);
    const std::size_t next = (place + 3 + 7) / 8;
    const std::size_t size = begin == 1 ? STORED : EMPTY.size();
    return begin <= 1 && count - next == size && std::equal(EMPTY.begin(), EMPTY.begin() + size, data + next);
}

} // namespace

std::optional<OrdinaryBlock> OrdinaryBlock::find(const unsigned char* data, std::size_t count) noexcept {
    constexpr unsigned WITH_OWN_CODES = 2;
    BitReader bits(data, count);
    const bool isLast = bits.take(1) == 1;
    if (bits.take(2) != WITH_OWN_CODES)
        return {};
    const unsigned literals = 257 + bits.take(5);
    const unsigned distances = 1 + bits.take(5);
    const unsigned lengthCodes = 4 + bits.take(4);
    LengthCode code;
    std::array<unsigned char, MOST_LITERALS + MOST_DISTANCES> lengths; // not cleared
    if (literals > MOST_LITERALS || distances > MOST_DISTANCES || !code.read(bits, lengthCodes) ||
        !readLengths(bits, code, lengths.data(), literals + distances) || lengths[END_OF_BLOCK] == 0)
        return {};
    if (!areComplete<LONGEST_CODE>(lengths.data(), literals) ||
        !areComplete<LONGEST_CODE>(lengths.data() + literals, distances))
        return {};
    if (isLast)
        return OrdinaryBlock(true, 0, 0);
    const unsigned char endLength = lengths[END_OF_BLOCK];
    const auto before = std::count(lengths.data(), lengths.data() + END_OF_BLOCK, endLength);
    const unsigned endCode =
        firstCodesOf<LONGEST_CODE>(lengths.data(), literals)[endLength] + static_cast<unsigned>(before);
    return OrdinaryBlock(false, reversed(endCode, endLength), endLength);
}

bool OrdinaryBlock::isAllOf(const unsigned char* data, std::size_t count, std::size_t end) const noexcept {
    if (last)
        return end == count;
    constexpr std::size_t LEAST_BEHIND = 4; // bytes that empty blocks take
    if (end < 4 || end > count || count - end < LEAST_BEHIND)
        return false;
    // The block ends with the code of its end, at one of these places. If the code stands at two of them, nobody knows which one
    // it is.
    std::size_t place = 0;
    for (std::size_t one = (end - 1) * 8 + 1; one <= end * 8; ++one)
        if (bitsAt(data, one - endLength, endLength) == endCode) {
            if (place != 0)
                return false;
            place = one;
        }
    return place != 0 && areEmptyBlocks(data, count, place);
}

} // namespace opc::physical::zip
