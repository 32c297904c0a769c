#include <opc/core/Text.hpp>

#include <algorithm>
#include <cstring>

namespace opc {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

constexpr char16_t toLowerASCII(char16_t unit) noexcept {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

constexpr bool isHighSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr bool isSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

/// Takes the code point at `position` and moves past it. A lone surrogate is returned as it is.
char32_t decodeUTF16(const std::u16string& text, std::size_t& position) {
    const char32_t first = text[position++];
    if (!isHighSurrogate(first) || position == text.size() || !isLowSurrogate(text[position]))
        return first;
    const char32_t second = text[position++];
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

bool isASCII(const std::u16string& text) {
    char16_t all = 0;
    for (const char16_t unit : text) // without a branch, so that it takes many at a time
        all = static_cast<char16_t>(all | unit);
    return all < 0x80;
}

void appendUTF16(std::u16string& text, char32_t point) {
    if (point < 0x10000) {
        text += static_cast<char16_t>(point);
        return;
    }
    point -= 0x10000;
    text += static_cast<char16_t>(0xD800 + (point >> 10));
    text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
}

void appendUTF8(std::string& text, char32_t point) {
    const auto append = [&text](char32_t byte) {
        text += static_cast<char>(static_cast<unsigned char>(byte));
    };
    if (point < 0x80) {
        append(point);
    } else if (point < 0x800) {
        append(0xC0 | (point >> 6));
        append(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        append(0xE0 | (point >> 12));
        append(0x80 | ((point >> 6) & 0x3F));
        append(0x80 | (point & 0x3F));
    } else {
        append(0xF0 | (point >> 18));
        append(0x80 | ((point >> 12) & 0x3F));
        append(0x80 | ((point >> 6) & 0x3F));
        append(0x80 | (point & 0x3F));
    }
}

/// Takes the code point at `position` and moves past it. For a malformed sequence, moves by one byte and returns
/// U+FFFD. Overlong forms, surrogates and values above U+10FFFF are malformed (RFC 3629 section 3).
char32_t decodeUTF8(const std::string& text, std::size_t& position) {
    const auto byteAt = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byteAt(position++);
    if (first < 0x80)
        return first;

    std::size_t following = 0;
    char32_t point = 0;
    char32_t least = 0;
    if ((first & 0xE0) == 0xC0) {
        following = 1, point = first & 0x1F, least = 0x80;
    } else if ((first & 0xF0) == 0xE0) {
        following = 2, point = first & 0x0F, least = 0x800;
    } else if ((first & 0xF8) == 0xF0) {
        following = 3, point = first & 0x07, least = 0x10000;
    } else {
        return REPLACEMENT;
    }
    if (text.size() - position < following)
        return REPLACEMENT;
    for (std::size_t i = 0; i < following; ++i) {
        const unsigned char next = byteAt(position + i);
        if ((next & 0xC0) != 0x80)
            return REPLACEMENT;
        point = (point << 6) | (next & 0x3F);
    }
    if (point < least || point > 0x10FFFF || isSurrogate(point))
        return REPLACEMENT;
    position += following;
    return point;
}

/// A lower bound of the length of the common beginning of two texts. Part names often have long ones.
std::size_t countEqualUnits(const char16_t* left, const char16_t* right, std::size_t length) noexcept {
    constexpr std::size_t STEP = 8;
    std::size_t i = 0;
    while (i + STEP <= length && std::memcmp(left + i, right + i, STEP * sizeof(char16_t)) == 0)
        i += STEP;
    return i;
}

} // namespace

std::int32_t caselessCompare(const std::u16string& left, const std::u16string& right) noexcept {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = countEqualUnits(left.data(), right.data(), common); i < common; ++i) {
        if (left[i] == right[i])
            continue;
        const std::int32_t difference = toLowerASCII(left[i]) - toLowerASCII(right[i]);
        if (difference != 0)
            return difference;
    }
    if (left.size() == right.size())
        return 0;
    return left.size() < right.size() ? -1 : 1;
}

std::int32_t compareTexts(std::u16string_view left, std::u16string_view right) noexcept {
    const std::size_t equal = countEqualUnits(left.data(), right.data(), std::min(left.size(), right.size()));
    return left.substr(equal).compare(right.substr(equal));
}

bool areSameTexts(std::u16string_view left, std::u16string_view right) noexcept {
    return left.size() == right.size() &&
           (left.empty() || std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0);
}

std::u16string toLowerASCIIString(const std::u16string& text) {
    std::u16string result(text);
    std::transform(result.begin(), result.end(), result.begin(), toLowerASCII);
    return result;
}

std::string toASCIIString(const std::u16string& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const char32_t point = decodeUTF16(text, position);
        result += point < 0x80 ? static_cast<char>(point) : '?';
    }
    return result;
}

std::string toUDEString(const std::u16string& text) {
    return detail::toUTF8String(text, true);
}

std::u16string toString(const std::wstring& text) {
    std::u16string result;
    result.reserve(text.size());
    for (const wchar_t character : text) {
        const auto point = static_cast<char32_t>(character);
        appendUTF16(result, point > 0x10FFFF ? REPLACEMENT : point);
    }
    return result;
}

std::u16string toString(const std::string& text, bool isUTF8) {
    if (!isUTF8) {
        std::u16string result(text.size(), u'\0');
        std::transform(text.begin(), text.end(), result.begin(), [](char character) {
            return static_cast<char16_t>(static_cast<unsigned char>(character));
        });
        return result;
    }
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();)
        appendUTF16(result, decodeUTF8(text, position));
    return result;
}

std::wstring toWideString(const std::u16string& text) {
    std::wstring result;
    result.reserve(text.size());
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        result.assign(text.begin(), text.end());
    } else {
        for (std::size_t position = 0; position < text.size();)
            result += static_cast<wchar_t>(decodeUTF16(text, position));
    }
    return result;
}

namespace detail {

std::string toUTF8String(const std::u16string& text, bool replaceMalformed) {
    std::string result;
    if (isASCII(text)) { // nearly all names are, and are copied many at a time
        result.resize(text.size());
        std::transform(text.begin(), text.end(), result.begin(),
                       [](char16_t unit) { return static_cast<char>(unit); });
        return result;
    }
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const char32_t point = decodeUTF16(text, position);
        if (!isSurrogate(point))
            appendUTF8(result, point);
        else if (replaceMalformed)
            appendUTF8(result, REPLACEMENT);
    }
    return result;
}

std::u16string getExtension(std::u16string_view path) {
    const std::size_t mark = path.find_last_of(u"./");
    if (mark == std::u16string_view::npos || path[mark] == u'/')
        return {};
    return std::u16string(path.substr(mark + 1));
}

} // namespace detail

} // namespace opc
