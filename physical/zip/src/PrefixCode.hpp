#pragma once

#include "BitInput.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opc::physical::zip {

/// A code of Deflate (RFC 1951, 3.2.2), whose symbols have between 1 and 15 bits. It is made in little time rather than
/// to be fast on much data: only codes of up to `TABLE_BITS` bits are looked up in a table.
template <unsigned TABLE_BITS, std::size_t SYMBOLS>
class PrefixCode {
public:
    static constexpr unsigned NO_SYMBOL = 0xFFFF;

    /// Begins a code without symbols.
    void clear() {
        counts = {};
        size = 0;
    }

    /// @param symbol  above those that have been added; at most `SYMBOLS` of them are
    void add(unsigned symbol, unsigned length) {
        ++counts[length];
        added[size++] = static_cast<std::uint16_t>(symbol << LENGTH_BITS | length);
    }

    /// Makes the code of what has been added.
    /// @param mayBeSparse  whether there may be no symbol, or one alone, of one bit
    /// @return whether the lengths fit together
    bool build(bool mayBeSparse) {
        std::array<std::uint16_t, LONGEST + 2> starts{}; // of the symbols of each length, in their order
        int left = 1;                                    // codes of that length that no shorter one begins
        for (unsigned length = 1; length <= LONGEST; ++length) {
            left = 2 * left - counts[length];
            if (left < 0)
                return false;
            starts[length + 1] = static_cast<std::uint16_t>(starts[length] + counts[length]);
        }
        if (left > 0 && !(mayBeSparse && counts[1] == size))
            return false;
        for (unsigned i = 0; i < size; ++i)
            ordered[starts[added[i] & LENGTH_MASK]++] = added[i];
        fillTable();
        return true;
    }

    /// @return the next symbol; `NO_SYMBOL` if what stands there is none
    unsigned take(BitInput& input) const {
        const unsigned entry = table[input.peek() % TABLE_SIZE];
        if (entry == 0)
            return takeLong(input);
        input.drop(entry & LENGTH_MASK);
        return entry >> LENGTH_BITS;
    }

private:
    static constexpr unsigned LONGEST = 15;
    static constexpr unsigned LENGTH_BITS = 4;
    static constexpr unsigned LENGTH_MASK = 15;
    static constexpr std::size_t TABLE_SIZE = std::size_t{1} << TABLE_BITS;
    static constexpr std::size_t AT_ONCE = 8; ///< entries that are copied, as far as they are needed or not

    /// Codes are counted up from the shortest on. They come with their first bit lowest: the table for one bit more
    /// holds the one so far twice, and each code is counted up from its highest bit down.
    void fillTable() {
        const std::uint16_t* next = ordered.data();
        unsigned code = 0;
        table[0] = 0;
        for (unsigned length = 1; length <= TABLE_BITS; ++length) {
            const unsigned half = 1U << (length - 1);
            for (unsigned i = 0; i < half; i += AT_ONCE) {
                std::array<std::uint16_t, AT_ONCE> some;
                std::memcpy(some.data(), &table[i], sizeof some);
                std::memcpy(&table[half + i], some.data(), sizeof some);
            }
            for (unsigned left = counts[length]; left > 0; --left) {
                table[code] = *next++;
                const unsigned zero =
                    half >> __builtin_clz(~(code << (32 - length))); // the highest bit that is 0
                code = (code & (zero - 1)) | zero;
            }
        }
    }

    unsigned takeLong(BitInput& input) const {
        int code = 0;
        int first = 0; // code of that length
        int index = 0; // of its symbol in their order
        std::uint64_t bits = input.peek();
        for (unsigned length = 1; length <= LONGEST; ++length, bits >>= 1) {
            code |= static_cast<int>(bits & 1);
            const int count = counts[length];
            if (code - first < count) {
                input.drop(length);
                return ordered[static_cast<std::size_t>(index + code - first)] >> LENGTH_BITS;
            }
            index += count;
            first = 2 * (first + count);
            code *= 2;
        }
        return NO_SYMBOL;
    }

    // Symbols with the lengths of their codes in the lowest bits.
    std::array<std::uint16_t, SYMBOLS> added;
    std::array<std::uint16_t, SYMBOLS> ordered; ///< by length
    std::array<std::uint16_t, TABLE_SIZE + AT_ONCE>
        table;                                     ///< by the next bits; 0 for longer codes, and for none
    std::array<std::uint16_t, LONGEST + 1> counts; ///< of the symbols of each length
    unsigned size = 0;
};

} // namespace opc::physical::zip
