#include "DocumentText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <cstdint>

namespace opc::physical::lenient {

namespace {

constexpr char16_t MARK = u'\uFEFF';
constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";

bool beginsWith(const Bytes& bytes, std::string_view beginning) {
    return bytes.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), bytes.begin(), [](char left, unsigned char right) {
               return static_cast<unsigned char>(left) == right;
           });
}

/// A character in UTF-8 (RFC 3629), with at most as many bytes as are left.
struct UTF8Character {
    std::size_t length = 0; ///< 0 if the bytes aren't a character
    std::uint32_t value = 0;
};

UTF8Character decodeCharacter(const unsigned char* bytes, std::size_t left) {
    constexpr std::uint32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
    const std::uint32_t first = bytes[0];
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || length > left || first > 0xF4)
        return {};
    std::uint32_t value = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((bytes[i] & 0xC0U) != 0x80)
            return {};
        value = value << 6 | (bytes[i] & 0x3FU);
    }
    const bool isSurrogate = value >= 0xD800 && value < 0xE000;
    return value < LEAST[length] || value > 0x10FFFF || isSurrogate ? UTF8Character{}
                                                                    : UTF8Character{length, value};
}

void append(std::u16string& text, std::uint32_t value) {
    if (value < 0x10000) {
        text.push_back(static_cast<char16_t>(value));
        return;
    }
    value -= 0x10000;
    text.push_back(static_cast<char16_t>(0xD800 + (value >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
}

} // namespace

std::optional<DocumentText> DocumentText::decode(const Bytes& bytes) {
    DocumentText result;
    result.findEncoding(bytes);
    const bool isUTF8 = result.encoding == Encoding::UTF8;
    const std::size_t begin = !result.hasMark ? 0 : isUTF8 ? UTF8_MARK.size() : sizeof(MARK);
    if (isUTF8 ? !result.decodeUTF8(bytes, begin) : !result.decodeUTF16(bytes, begin))
        return std::nullopt;
    return result;
}

/// A document without a byte order mark begins with `<`, or with white space.
void DocumentText::findEncoding(const Bytes& bytes) {
    using namespace std::string_view_literals;
    const bool hasLittleMark = beginsWith(bytes, "\xFF\xFE"sv);
    const bool hasBigMark = beginsWith(bytes, "\xFE\xFF"sv);
    hasMark = hasLittleMark || hasBigMark || beginsWith(bytes, UTF8_MARK);
    const bool isWide = bytes.size() > 1;
    if (hasLittleMark || (isWide && bytes[0] != 0 && bytes[1] == 0))
        encoding = Encoding::UTF16LittleEndian;
    else if (hasBigMark || (isWide && bytes[0] == 0 && bytes[1] != 0))
        encoding = Encoding::UTF16BigEndian;
}

bool DocumentText::decodeUTF8(const Bytes& bytes, std::size_t begin) {
    decoded.reserve(bytes.size() - begin);
    while (begin < bytes.size()) {
        const UTF8Character character = decodeCharacter(bytes.data() + begin, bytes.size() - begin);
        if (character.length == 0)
            return false;
        append(decoded, character.value);
        begin += character.length;
    }
    return true;
}

bool DocumentText::decodeUTF16(const Bytes& bytes, std::size_t begin) {
    if (bytes.size() % 2 != 0)
        return false;
    const std::size_t high = encoding == Encoding::UTF16BigEndian ? 0 : 1;
    decoded.reserve((bytes.size() - begin) / 2);
    for (; begin < bytes.size(); begin += 2)
        decoded.push_back(static_cast<char16_t>(bytes[begin + high] << 8 | bytes[begin + 1 - high]));
    return true;
}

Bytes DocumentText::encode(std::u16string_view other) const {
    const std::u16string whole = (hasMark ? std::u16string(1, MARK) : std::u16string()).append(other);
    if (encoding == Encoding::UTF8) {
        const std::string narrow = detail::toUTF8String(whole, true);
        return Bytes(narrow.begin(), narrow.end());
    }
    Bytes bytes;
    bytes.reserve(2 * whole.size());
    for (const char16_t unit : whole) {
        const auto high = static_cast<unsigned char>(unit >> 8);
        const auto low = static_cast<unsigned char>(unit & 0xFF);
        bytes.push_back(encoding == Encoding::UTF16BigEndian ? high : low);
        bytes.push_back(encoding == Encoding::UTF16BigEndian ? low : high);
    }
    return bytes;
}

} // namespace opc::physical::lenient
