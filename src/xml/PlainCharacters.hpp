#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// @file
/// The characters of documents in the plain form (`xml/PlainDocument.hpp`).

namespace opc::model::plain {

/// The places that allow a character, as bits, so that a mask is a set of them.
enum Kind : std::uint16_t {
    Space = 1,
    Letter = 2,
    Digit = 4,
    HexDigit = 8,
    DoubleQuoted = 16, // an attribute value without escapes: printable ASCII without `<`, `&` and the quote
    SingleQuoted = 32,
    Ampersand = 64,
    Colon = 128,
    Delimiter = 256,    // the end of an authority or of a segment of a URI: `/`, `?`, `#`
    URIPlain = 512,     // anywhere in a path, a query or a fragment of a URI, including the backslash
    BeyondASCII = 1024, // a byte of UTF-8
    Token = 2048,       // type and subtype of a usual media type
    Base64 = 4096,      // without the padding
};

constexpr std::array<std::uint16_t, 256> classify() {
    std::array<std::uint16_t, 256> kinds{};
    const auto add = [&kinds](std::string_view characters, Kind kind) {
        for (const char c : characters)
            kinds[static_cast<unsigned char>(c)] |= kind;
    };
    for (unsigned char c = ' '; c <= '~'; ++c)
        if (c != '<' && c != '&')
            kinds[c] |= (c != '"' ? DoubleQuoted : 0) | (c != '\'' ? SingleQuoted : 0);
    for (unsigned char c = 'a'; c <= 'z'; ++c) {
        kinds[c] |= Letter | URIPlain | Token | Base64;
        kinds[c - 'a' + 'A'] |= Letter | URIPlain | Token | Base64;
    }
    for (std::size_t c = 0x80; c < kinds.size(); ++c)
        kinds[c] = BeyondASCII;
    add(" \t\r\n", Space);
    add("0123456789", Digit);
    add("0123456789abcdefABCDEF", HexDigit);
    add("&", Ampersand);
    add(":", Colon);
    add("/?#", Delimiter);
    add("0123456789-.+_", Token);
    add("0123456789+/", Base64);
    add("0123456789-._~!$&'()*+,;=:@/?\\", URIPlain);
    return kinds;
}

inline constexpr std::array<std::uint16_t, 256> KINDS = classify();

constexpr bool is(char c, unsigned kinds) {
    return (KINDS[static_cast<unsigned char>(c)] & kinds) != 0;
}

/// Whether the eight characters from `text` on are printable ASCII without `<`, `&` and both quotes, so that an
/// attribute value can have them without escapes. Examines all of them at once.
inline bool areEightInValue(const char* text) {
    constexpr std::uint64_t EACH = 0x0101010101010101;
    constexpr std::uint64_t TOP_BITS = 0x80 * EACH;
    std::uint64_t all = 0;
    std::memcpy(&all, text, sizeof all);
    // If all are ASCII, a term has a top bit only if one of them is a character that the term looks for. The second
    // term looks for DEL, the third one for control characters. `'` differs from `&` only in the lowest bit.
    const auto has = [](std::uint64_t characters, char sought) {
        return (characters ^ (static_cast<unsigned char>(sought) * EACH)) - EACH;
    };
    const std::uint64_t found =
        all | (all + EACH) | (all - ' ' * EACH) | has(all, '"') | has(all, '<') | has(all | EACH, '\'');
    return (found & TOP_BITS) == 0;
}

/// Whether a code unit is a character of text that needs no escape, apart from the characters of markup.
constexpr bool isText(char16_t unit) {
    return (unit >= u' ' && unit <= u'~') || unit == u'\n' || unit == u'\t' ||
           (unit >= u'\u00A0' && unit < 0xD800);
}

/// Whether all characters belong to these kinds.
inline bool areAll(std::string_view text, unsigned kinds) {
    return std::all_of(text.begin(), text.end(), [kinds](char c) { return is(c, kinds); });
}

} // namespace opc::model::plain
