#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

/// @file
/// The characters of documents in the plain form (`xml/PlainDocument.hpp`).

namespace opc::model::plain {

/// What a character may be part of: bits, so that a set of them is a mask.
enum Kind : std::uint8_t {
    Space = 1,
    Letter = 2,
    Digit = 4,
    Path = 8,          // of a URI, without escapes
    DoubleQuoted = 16, // an attribute value as it is: printable ASCII without `<`, `&` and the quote
    SingleQuoted = 32,
    Colon = 64,
};

constexpr std::array<std::uint8_t, 256> classify() {
    std::array<std::uint8_t, 256> kinds{};
    for (const char c : std::string_view(" \t\r\n"))
        kinds[static_cast<unsigned char>(c)] = Space;
    for (unsigned char c = ' '; c <= '~'; ++c)
        if (c != '<' && c != '&')
            kinds[c] |= (c != '"' ? DoubleQuoted : 0) | (c != '\'' ? SingleQuoted : 0);
    for (unsigned char c = 'a'; c <= 'z'; ++c) {
        kinds[c] |= Letter | Path;
        kinds[c - 'a' + 'A'] |= Letter | Path;
    }
    for (unsigned char c = '0'; c <= '9'; ++c)
        kinds[c] |= Digit | Path;
    for (const char c : std::string_view("-._~/"))
        kinds[static_cast<unsigned char>(c)] |= Path;
    kinds[':'] |= Colon;
    return kinds;
}

inline constexpr std::array<std::uint8_t, 256> KINDS = classify();

constexpr bool is(char c, unsigned kinds) {
    return (KINDS[static_cast<unsigned char>(c)] & kinds) != 0;
}

/// Whether a code unit is a character of text: but for the characters of markup, it stands in a document as itself.
constexpr bool isText(char16_t unit) {
    return (unit >= u' ' && unit <= u'~') || unit == u'\n' || unit == u'\t' ||
           (unit >= u'\u00A0' && unit < 0xD800);
}

/// Whether all characters are of these kinds.
inline bool areAll(std::string_view text, unsigned kinds) {
    return std::all_of(text.begin(), text.end(), [kinds](char c) { return is(c, kinds); });
}

} // namespace opc::model::plain
