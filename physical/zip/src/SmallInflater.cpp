#include "SmallInflater.hpp"

#include "BitInput.hpp"
#include "PrefixCode.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace opc::physical::zip {

namespace {

constexpr unsigned END_OF_BLOCK = 256; ///< symbols below are bytes, and those above lengths

/// Numbers from `base` on, told apart by the `bits` behind a symbol.
struct Range {
    std::uint16_t base;
    std::uint8_t bits;
};
constexpr std::array<Range, 29> LENGTHS = {
    {{3, 0},  {4, 0},  {5, 0},  {6, 0},   {7, 0},   {8, 0},   {9, 0},   {10, 0},  {11, 1}, {13, 1},
     {15, 1}, {17, 1}, {19, 2}, {23, 2},  {27, 2},  {31, 2},  {35, 3},  {43, 3},  {51, 3}, {59, 3},
     {67, 4}, {83, 4}, {99, 4}, {115, 4}, {131, 5}, {163, 5}, {195, 5}, {227, 5}, {258, 0}}};
constexpr std::array<Range, 30> DISTANCES = {
    {{1, 0},     {2, 0},     {3, 0},     {4, 0},      {5, 1},      {7, 1},     {9, 2},     {13, 2},
     {17, 3},    {25, 3},    {33, 4},    {49, 4},     {65, 5},     {97, 5},    {129, 6},   {193, 6},
     {257, 7},   {385, 7},   {513, 8},   {769, 8},    {1025, 9},   {1537, 9},  {2049, 10}, {3073, 10},
     {4097, 11}, {6145, 11}, {8193, 12}, {12289, 12}, {16385, 13}, {24577, 13}}};

/// The code of the lengths of codes: symbols up to 15 are lengths, and the others repeat one.
using LengthCode = PrefixCode<7, 19>;
constexpr unsigned LAST_AGAIN = 16;
constexpr unsigned SOME_ZEROS = 17;
constexpr unsigned MANY_ZEROS = 18;

struct Codes {
    PrefixCode<9, 288> literals; ///< and lengths
    PrefixCode<5, 32> distances;
};

/// RFC 1951, 3.2.6.
Codes makeFixedCodes() {
    Codes codes;
    codes.literals.clear();
    for (unsigned symbol = 0; symbol < 288; ++symbol)
        codes.literals.add(symbol, symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8);
    codes.literals.build(false);
    codes.distances.clear();
    for (unsigned symbol = 0; symbol < 32; ++symbol)
        codes.distances.add(symbol, 5);
    codes.distances.build(false);
    return codes;
}

class Expansion {
public:
    Expansion(const unsigned char* data, std::size_t count, unsigned char* output, std::size_t size)
        : input(data, count), begin(output), next(output), end(output + size) {}

    bool run();

private:
    bool expandBlock(unsigned kind);
    bool copyStored();
    bool readCodes();
    bool readLengthCode(unsigned count, LengthCode& code);
    bool readLengths(const LengthCode& code, unsigned literalCount, unsigned distanceCount);
    unsigned takeLength(const LengthCode& code, unsigned& length);
    bool expandSymbols(const Codes& codes);
    bool repeat(std::size_t distance, std::size_t length);

    std::size_t room() const { return static_cast<std::size_t>(end - next); }

    BitInput input;
    unsigned char* begin;
    unsigned char* next;
    unsigned char* end;
    Codes ownCodes; ///< of the block
};

bool Expansion::run() {
    for (bool isLast = false; !isLast;) {
        input.refill();
        isLast = input.take(1) != 0;
        if (!expandBlock(input.take(2)))
            return false;
    }
    return next == end && input.isAtEnd();
}

bool Expansion::expandBlock(unsigned kind) {
    static const Codes FIXED_CODES = makeFixedCodes();
    if (input.isOverdrawn())
        return false;
    switch (kind) {
    case 0:
        return copyStored();
    case 1:
        return expandSymbols(FIXED_CODES);
    case 2:
        return readCodes() && expandSymbols(ownCodes);
    default:
        return false;
    }
}

bool Expansion::copyStored() {
    input.align();
    input.refill();
    const unsigned size = input.take(16);
    const unsigned complement = input.take(16);
    if (input.isOverdrawn() || (size ^ complement) != 0xFFFF || size > room())
        return false;
    const unsigned char* bytes = input.takeBytes(size);
    if (!bytes)
        return false;
    next = std::copy_n(bytes, size, next);
    return true;
}

bool Expansion::readCodes() {
    const unsigned literalCount = input.take(5) + 257;
    const unsigned distanceCount = input.take(5) + 1;
    const unsigned lengthCount = input.take(4) + 4;
    LengthCode lengths;
    return literalCount <= 286 && distanceCount <= 30 && readLengthCode(lengthCount, lengths) &&
           readLengths(lengths, literalCount, distanceCount) && ownCodes.literals.build(true) &&
           ownCodes.distances.build(true);
}

/// Reads the code that the lengths of the other two are in.
bool Expansion::readLengthCode(unsigned count, LengthCode& code) {
    constexpr std::array<std::uint8_t, 19> ORDER = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                    11, 4,  12, 3, 13, 2, 14, 1, 15};
    std::array<std::uint8_t, ORDER.size()> lengths{};
    for (unsigned i = 0; i < count; ++i) {
        input.refill();
        lengths[ORDER[i]] = static_cast<std::uint8_t>(input.take(3));
    }
    code.clear();
    for (unsigned symbol = 0; symbol < lengths.size(); ++symbol)
        if (lengths[symbol] > 0)
            code.add(symbol, lengths[symbol]);
    return !input.isOverdrawn() && code.build(false);
}

/// Reads the lengths of both codes, one behind the other.
bool Expansion::readLengths(const LengthCode& code, unsigned literalCount, unsigned distanceCount) {
    ownCodes.literals.clear();
    ownCodes.distances.clear();
    const unsigned all = literalCount + distanceCount;
    bool hasEnd = false;
    unsigned length = LAST_AGAIN; // there is no last one yet
    for (unsigned i = 0; i < all;) {
        const unsigned times = takeLength(code, length);
        if (length >= LAST_AGAIN || input.isOverdrawn() || times > all - i)
            return false;
        if (length == 0) {
            i += times;
            continue;
        }
        for (const unsigned behind = i + times; i < behind; ++i) {
            hasEnd = hasEnd || i == END_OF_BLOCK;
            if (i < literalCount)
                ownCodes.literals.add(i, length);
            else
                ownCodes.distances.add(i - literalCount, length);
        }
    }
    return hasEnd;
}

/// @param length  the last one; gets the next one
/// @return how many times it stands there
unsigned Expansion::takeLength(const LengthCode& code, unsigned& length) {
    input.refill();
    const unsigned symbol = code.take(input);
    if (symbol == LAST_AGAIN)
        return 3 + input.take(2);
    length = symbol < LAST_AGAIN || symbol == LengthCode::NO_SYMBOL ? symbol : 0;
    if (symbol == SOME_ZEROS)
        return 3 + input.take(3);
    return symbol == MANY_ZEROS ? 11 + input.take(7) : 1;
}

bool Expansion::expandSymbols(const Codes& codes) {
    for (;;) {
        input.refill();
        const unsigned symbol = codes.literals.take(input);
        if (symbol < END_OF_BLOCK) {
            if (input.isOverdrawn() || next == end)
                return false;
            *next++ = static_cast<unsigned char>(symbol);
            continue;
        }
        if (symbol == END_OF_BLOCK)
            return !input.isOverdrawn();
        if (symbol - END_OF_BLOCK > LENGTHS.size())
            return false;
        const Range& lengths = LENGTHS[symbol - END_OF_BLOCK - 1];
        const unsigned length = lengths.base + input.take(lengths.bits);
        const unsigned distanceSymbol = codes.distances.take(input);
        if (distanceSymbol >= DISTANCES.size())
            return false;
        const Range& distances = DISTANCES[distanceSymbol];
        const unsigned distance = distances.base + input.take(distances.bits);
        if (input.isOverdrawn() || !repeat(distance, length))
            return false;
    }
}

/// Appends `length` bytes that stand `distance` bytes before, and which it may write itself.
bool Expansion::repeat(std::size_t distance, std::size_t length) {
    constexpr std::size_t AT_ONCE = 8;
    if (distance > static_cast<std::size_t>(next - begin) || length > room())
        return false;
    const unsigned char* from = next - distance;
    unsigned char* const last = next + length;
    if (distance < AT_ONCE || room() - length < AT_ONCE) {
        while (next != last)
            *next++ = *from++;
        return true;
    }
    for (; next < last; next += AT_ONCE, from += AT_ONCE)
        std::memcpy(next, from, AT_ONCE);
    next = last;
    return true;
}

} // namespace

bool expandSmall(const unsigned char* data, std::size_t count, unsigned char* output, std::size_t size) {
    return Expansion(data, count, output, size).run();
}

} // namespace opc::physical::zip
