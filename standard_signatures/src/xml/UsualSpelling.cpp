#include "xml/UsualSpelling.hpp"

#include "names/HexDigit.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace opc::standard_signatures {

namespace {

/// The place of a byte; the end if it isn't there.
const unsigned char* find(unsigned char byte, const unsigned char* begin, const unsigned char* end) {
    const void* const found = std::memchr(begin, byte, static_cast<std::size_t>(end - begin));
    return found == nullptr ? end : static_cast<const unsigned char*>(found);
}

/// By byte: whether it is nothing but a character of a name, or a slash, in a tag.
constexpr std::array<bool, 256> makeMeaningless() {
    std::array<bool, 256> all{};
    for (bool& one : all)
        one = true;
    for (const char c : std::string_view(" \t\r\n=\"'>"))
        all[static_cast<unsigned char>(c)] = false;
    return all;
}

constexpr std::array<bool, 256> MEANINGLESS = makeMeaningless();

} // namespace

const char* UsualSpelling::findOdd(const unsigned char* bytes, std::size_t count) {
    if (hasNeedlessReference(bytes, bytes + count))
        return "A character is written as its number without need, which not all programs resolve";
    if (hasOddTag(bytes, bytes + count))
        return "A tag has a tab, or a line end at an equals sign, which not all programs take for space";
    return nullptr;
}

bool UsualSpelling::hasOddTag(const unsigned char* bytes, const unsigned char* end) {
    while (bytes != end) {
        if (place == Place::Text || place == Place::Aside || place == Place::Value) {
            const unsigned char last = place == Place::Text ? '<' : place == Place::Aside ? '>' : quote;
            bytes = find(last, bytes, end);
            if (bytes == end)
                return false;
            place = place == Place::Text ? Place::Begin : place == Place::Aside ? Place::Text : Place::Tag;
            ++bytes;
            isBehindLineEnd = isBehindEqualsSign = false;
        } else if (place == Place::Begin && (*bytes == '!' || *bytes == '?')) {
            place = Place::Aside; // up to the first `>`; no markup stands behind that one in it
        } else {
            const unsigned char* const begin = bytes;
            bytes = std::find_if_not(bytes, end, [](unsigned char c) { return MEANINGLESS[c]; });
            isBehindLineEnd = isBehindLineEnd && bytes == begin;
            place = Place::Tag;
            if (bytes != end && isOddInTag(*bytes++))
                return true;
        }
    }
    return false;
}

bool UsualSpelling::isOddInTag(unsigned char byte) {
    switch (byte) {
    case '\t':
        return true;
    case '\r':
    case '\n':
        isBehindLineEnd = true;
        return isBehindEqualsSign;
    case ' ':
        return false;
    case '=':
        isBehindEqualsSign = true;
        return isBehindLineEnd;
    case '"':
    case '\'':
        quote = byte;
        place = Place::Value;
        return false;
    default: // a `>`
        place = Place::Text;
        return false;
    }
}

bool UsualSpelling::hasNeedlessReference(const unsigned char* bytes, const unsigned char* end) {
    while (bytes != end) {
        if (reference == Reference::None)
            bytes = find('&', bytes, end);
        if (bytes != end && isNeedlessReference(*bytes++))
            return true;
    }
    return false;
}

/// Whether a byte ends such a reference.
bool UsualSpelling::isNeedlessReference(unsigned char byte) {
    constexpr std::uint32_t MOST = 0x110000;
    const int digit = hexDigitOf(byte);
    if (byte == '&') {
        reference = Reference::Ampersand;
    } else if (reference == Reference::Ampersand && byte == '#') {
        reference = Reference::Number;
        base = 10;
        number = 0;
    } else if (reference == Reference::Number && byte == 'x' && number == 0) {
        base = 16;
    } else if (reference == Reference::Number && digit >= 0 && static_cast<unsigned>(digit) < base) {
        number = std::min(number * base + static_cast<unsigned>(digit), MOST);
    } else {
        const bool isASCII = reference == Reference::Number && byte == ';' && number >= ' ' && number <= '~';
        reference = Reference::None;
        return isASCII &&
               std::string_view("&<>\"'").find(static_cast<char>(number)) == std::string_view::npos;
    }
    return false;
}

} // namespace opc::standard_signatures
