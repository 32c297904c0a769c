#include "xml/ScannedText.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace opc::model {

namespace {

struct PredefinedEntity {
    std::string_view name;
    char16_t character;
};

constexpr PredefinedEntity PREDEFINED[] = {
    {"amp", u'&'}, {"lt", u'<'}, {"gt", u'>'}, {"quot", u'"'}, {"apos", u'\''}};

/// By the production Char of XML 1.0.
bool isCharacter(std::uint32_t code) {
    if (code < 0x20)
        return code == '\t' || code == '\n' || code == '\r';
    return code < 0xD800 || (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

/// How many bytes a character has that begins with this one; 0 if none does.
std::size_t sizeOf(unsigned char first) {
    return first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
}

} // namespace

Scanned decodeCharacter(const char*& at, const char* end, std::uint32_t& code) {
    const auto first = static_cast<unsigned char>(*at);
    const std::size_t size = sizeOf(first);
    if (size == 0)
        return Scanned::NotPlain;
    if (static_cast<std::size_t>(end - at) < size)
        return Scanned::Incomplete;
    code = size == 1 ? first : first & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        const auto next = static_cast<unsigned char>(at[i]);
        if ((next & 0xC0U) != 0x80)
            return Scanned::NotPlain;
        code = code << 6 | (next & 0x3FU);
    }
    constexpr std::uint32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < SMALLEST[size] || !isCharacter(code))
        return Scanned::NotPlain;
    at += size;
    return Scanned::Taken;
}

Scanned decodeReference(const char*& at, const char* end, std::uint32_t& code) {
    constexpr std::ptrdiff_t LONGEST = 12;
    const char* const last = std::find(at, at + std::min(end - at, LONGEST), ';');
    if (last == end)
        return Scanned::Incomplete;
    if (*last != ';')
        return Scanned::NotPlain;
    const std::string_view name(at + 1, static_cast<std::size_t>(last - at) - 1);
    if (name.substr(0, 1) == "#") {
        const bool isHexadecimal = name.substr(1, 1) == "x";
        const char* const digits = name.data() + (isHexadecimal ? 2 : 1);
        const auto [behind, failure] = std::from_chars(digits, last, code, isHexadecimal ? 16 : 10);
        if (failure != std::errc() || behind != last || digits == last || !isCharacter(code))
            return Scanned::NotPlain;
    } else {
        const auto* const found =
            std::find_if(std::begin(PREDEFINED), std::end(PREDEFINED),
                         [name](const PredefinedEntity& entity) { return entity.name == name; });
        if (found == std::end(PREDEFINED))
            return Scanned::NotPlain;
        code = found->character;
    }
    at = last + 1;
    return Scanned::Taken;
}

char16_t* putCharacter(std::uint32_t code, char16_t* target) {
    if (code < 0x10000) {
        *target = static_cast<char16_t>(code);
        return target + 1;
    }
    target[0] = static_cast<char16_t>(0xD7C0 + (code >> 10));
    target[1] = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    return target + 2;
}

} // namespace opc::model
