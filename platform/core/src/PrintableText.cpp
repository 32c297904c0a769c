#include <opc/core/PrintableText.hpp>
#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>
#include <cstdio>

namespace opc {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// Control characters, separators of lines and paragraphs, format characters, and invisible letters.
constexpr Range UNPRINTABLE[] = {
    {0x0, 0x1F},        {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},     {0x600, 0x605},
    {0x61C, 0x61C},     {0x6DD, 0x6DD},     {0x70F, 0x70F},     {0x890, 0x891},     {0x8E2, 0x8E2},
    {0x115F, 0x1160},   {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F},   {0x3164, 0x3164},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},   {0xFFF0, 0xFFFB},
    {0x110BD, 0x110BD}, {0x110CD, 0x110CD}, {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
    {0xE0000, 0xE0FFF},
};

/// @param escape  gives the replacement of such a character in UTF-16
template <typename Escape>
std::string replaceUnprintable(const std::string& text, const Escape& escape) {
    if (std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        return text;
    const std::u16string units = toString(text, true);
    std::u16string kept;
    for (std::size_t i = 0; i < units.size();) {
        const bool isPair = (units[i] & 0xFC00U) == 0xD800U && i + 1 < units.size();
        const char32_t character =
            isPair ? 0x10000U + ((units[i] & 0x3FFU) << 10U) + (units[i + 1] & 0x3FFU) : units[i];
        const std::u16string own = units.substr(i, isPair ? 2 : 1);
        kept += isUnprintable(character) ? escape(own) : own;
        i += own.size();
    }
    return toUDEString(kept);
}

} // namespace

bool isUnprintable(char32_t character) {
    const bool isPlain = character >= U' ' && character <= U'~';
    return !isPlain &&
           std::any_of(std::begin(UNPRINTABLE), std::end(UNPRINTABLE), [character](const Range& range) {
               return range.first <= character && character <= range.last;
           });
}

std::string withoutControlCharacters(const std::string& text) {
    return replaceUnprintable(text, [](const std::u16string&) { return std::u16string(u" "); });
}

std::string linesWithoutControlCharacters(const std::string& text) {
    return replaceUnprintable(
        text, [](const std::u16string& own) { return own == u"\n" ? own : std::u16string(u" "); });
}

std::string escapedJSON(const std::string& document) {
    const auto escape = [](const std::u16string& own) {
        if (own == u"\n")
            return own;
        std::u16string escaped;
        for (const char16_t unit : own) {
            std::array<char, 7> text{};
            std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(unit));
            escaped += toString(text.data(), true);
        }
        return escaped;
    };
    return replaceUnprintable(document, escape);
}

} // namespace opc
