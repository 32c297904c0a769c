#include "NameText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opc::physical::zip {

namespace {

/// The upper half of code page 437.
constexpr std::array<char16_t, 128> UPPER_HALF = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE,
    0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6,
    0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA,
    0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502,
    0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514,
    0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550,
    0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C,
    0x2588, 0x2584, 0x258C, 0x2590, 0x2580, 0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320,
    0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0,
};

/// The number of bytes of the character at `text[i]`; 0 if it isn't well-formed.
std::size_t sequenceSize(std::string_view text, std::size_t i) {
    const auto byte = [&text](std::size_t place) {
        return place < text.size() ? static_cast<unsigned char>(text[place]) : 0U;
    };
    const unsigned first = byte(i);
    if (first < 0x80)
        return 1;
    // The range of the second byte excludes overlong forms, surrogates and everything beyond U+10FFFF.
    const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (first < 0xC2 || first > 0xF4 || byte(i + 1) < low || byte(i + 1) > high)
        return 0;
    const std::size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    for (std::size_t k = 2; k < size; ++k) {
        if (byte(i + k) < 0x80 || byte(i + k) > 0xBF)
            return 0;
    }
    return size;
}

/// Whether the eight bytes at `text` are ASCII, as nearly always.
bool areASCII(const char* text) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof bytes);
    return (bytes & 0x8080808080808080) == 0;
}

} // namespace

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; });
}

bool isUTF8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        if (i + 8 <= text.size() && areASCII(text.data() + i)) {
            i += 8;
            continue;
        }
        const std::size_t size = sequenceSize(text, i);
        if (size == 0)
            return false;
        i += size;
    }
    return true;
}

std::string fromCodePage437(std::string_view text) {
    std::u16string decoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        decoded += byte < 0x80 ? static_cast<char16_t>(byte) : UPPER_HALF[byte - 0x80U];
    }
    return detail::toUTF8String(decoded, true);
}

std::string fromLatin1(std::string_view text) {
    std::u16string decoded;
    for (const char c : text)
        decoded += static_cast<char16_t>(static_cast<unsigned char>(c));
    return detail::toUTF8String(decoded, true);
}

} // namespace opc::physical::zip
