#include <bedrock/crypto/utils/Base64.hpp>

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <array>
#include <cstdint>

namespace bedrock::crypto::utils {

namespace {

constexpr char16_t Alphabet[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// What a code unit means if it isn't a digit from 0 to 63.
constexpr unsigned char Blank = 64;
constexpr unsigned char Padding = 65;
constexpr unsigned char Foreign = 66;

using Meanings = std::array<unsigned char, 256>;

constexpr Meanings makeMeanings() {
    Meanings meanings{};
    for (unsigned char& meaning : meanings)
        meaning = Foreign;
    for (unsigned char value = 0; value < 64; ++value)
        meanings[Alphabet[value]] = value;
    for (const char16_t blank : {u' ', u'\t', u'\r', u'\n'})
        meanings[blank] = Blank;
    meanings[u'='] = Padding;
    return meanings;
}

constexpr Meanings MEANINGS = makeMeanings();

unsigned char meaningOf(char unit) {
    return MEANINGS[static_cast<unsigned char>(unit)];
}

unsigned char meaningOf(char16_t unit) {
    return unit < MEANINGS.size() ? MEANINGS[unit] : Foreign;
}

/// Decodes four digits.
/// @return whether these are digits and nothing else
template <typename Unit>
bool decodeGroup(const Unit* units, unsigned char* target) {
    const unsigned first = meaningOf(units[0]);
    const unsigned second = meaningOf(units[1]);
    const unsigned third = meaningOf(units[2]);
    const unsigned fourth = meaningOf(units[3]);
    if ((first | second | third | fourth) >= Blank) // other meanings have a bit that digits don't have
        return false;
    target[0] = static_cast<unsigned char>(first << 2 | second >> 4);
    target[1] = static_cast<unsigned char>(second << 4 | third >> 2);
    target[2] = static_cast<unsigned char>(third << 6 | fourth);
    return true;
}

template <typename Text>
std::vector<unsigned char> decode(Text text) {
    std::vector<unsigned char> bytes(text.size() / 4 * 3 + 2);
    std::size_t count = 0;
    std::uint32_t group = 0;
    unsigned digits = 0;  // in the current group of four
    unsigned padding = 0; // so far
    for (std::size_t i = 0; i < text.size(); ++i) {
        while (digits == 0 && padding == 0 && text.size() - i > 4 && // most of the text
               decodeGroup(text.data() + i, bytes.data() + count)) {
            i += 4;
            count += 3;
        }
        const auto unit = text[i];
        const unsigned char meaning = meaningOf(unit);
        if (meaning == Blank)
            continue;
        if (meaning == Foreign)
            throw Exception("The text isn't Base64: it holds a character outside the alphabet.");
        if (meaning == Padding) {
            ++padding;
            continue;
        }
        if (padding > 0)
            throw Exception("The text isn't Base64: padding stands before its end.");
        group = group << 6 | meaning;
        if (++digits == 4) {
            bytes[count++] = static_cast<unsigned char>(group >> 16);
            bytes[count++] = static_cast<unsigned char>(group >> 8);
            bytes[count++] = static_cast<unsigned char>(group);
            group = 0;
            digits = 0;
        }
    }
    if (digits == 1 || padding != (4 - digits) % 4)
        throw Exception("The text isn't Base64: its end is cut off or wrongly padded.");
    group <<= 6 * padding;
    if (digits != 0 && (group & (padding == 2 ? 0xFFFF : 0xFF)) != 0)
        throw Exception("The text isn't Base64: bits behind the last byte aren't zero.");
    if (digits != 0)
        bytes[count++] = static_cast<unsigned char>(group >> 16);
    if (padding == 1)
        bytes[count++] = static_cast<unsigned char>(group >> 8);
    bytes.resize(count);
    return bytes;
}

} // namespace

std::u16string base64Encode(const std::vector<unsigned char>& bytes) {
    std::u16string text((bytes.size() + 2) / 3 * 4, u'=');
    auto target = text.begin();
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        const std::size_t count = bytes.size() - start;
        const std::uint32_t group = std::uint32_t{bytes[start]} << 16 |
                                    (count > 1 ? std::uint32_t{bytes[start + 1]} << 8 : 0) |
                                    (count > 2 ? std::uint32_t{bytes[start + 2]} : 0);
        *target++ = Alphabet[group >> 18];
        *target++ = Alphabet[group >> 12 & 63];
        if (count > 1)
            *target++ = Alphabet[group >> 6 & 63];
        if (count > 2)
            *target++ = Alphabet[group & 63];
    }
    return text;
}

std::vector<unsigned char> base64Decode(std::u16string_view text) {
    return decode(text);
}

std::vector<unsigned char> base64Decode(std::string_view text) {
    return decode(text);
}

} // namespace bedrock::crypto::utils
