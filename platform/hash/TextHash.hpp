#pragma once

#include "hash/Modulo61.hpp"

#include <opc/core/Export.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace opc {

/// The base of the hash values of this process, which nobody can guess.
OPC_CORE_EXPORT std::uint64_t secretBase();

/// Hashes the length and the characters of a text: they are the digits of a number in the secret base, modulo the prime
/// 2^61 - 1. So nobody can choose texts that collide. One digit holds as many characters as fit.
/// @param fold  gives the character that stands for a character, for texts that are the same to the caller
template <typename Character, typename Fold>
std::uint64_t hashOf(std::basic_string_view<Character> text, Fold fold) {
    constexpr std::size_t IN_DIGIT = 7 / sizeof(Character);
    static const std::uint64_t BASE = secretBase();
    std::uint64_t value = text.size();
    const auto addDigit = [&](const Character* characters, std::size_t count) {
        std::uint64_t digit = 0;
        for (std::size_t i = 0; i < count; ++i)
            digit = digit << (8 * sizeof(Character)) |
                    static_cast<std::make_unsigned_t<Character>>(fold(characters[i]));
        value = modulo61::multiply(value, BASE, digit);
    };
    for (; text.size() >= IN_DIGIT; text.remove_prefix(IN_DIGIT))
        addDigit(text.data(), IN_DIGIT); // whose loop the compiler unrolls
    if (!text.empty())
        addDigit(text.data(), text.size());
    return value;
}

/// For tables of texts that somebody else has chosen. The hash of the standard library is known: whoever chooses texts with one
/// hash value makes each search of a table go through all of them.
struct TextHash {
    std::size_t operator()(std::string_view text) const { return hash(text); }
    std::size_t operator()(std::u16string_view text) const { return hash(text); }

private:
    template <typename Character>
    static std::size_t hash(std::basic_string_view<Character> text) {
        const std::uint64_t value = hashOf(text, [](Character c) { return c; });
        return static_cast<std::size_t>(value ^ value >> 32);
    }
};

} // namespace opc
