#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace opc::model {

/// A constant text of ASCII characters, in bytes and in UTF-16: documents are scanned and composed in bytes, while Xerces
/// and the model take UTF-16.
template <std::size_t Size> // with the terminating zero
class AsciiLiteral {
public:
    constexpr AsciiLiteral(const char (&text)[Size]) { // a literal stands for itself
        for (std::size_t i = 0; i < Size; ++i)
            put(i, text[i]);
    }

    /// One text behind the other.
    template <std::size_t Left, std::size_t Right>
    constexpr AsciiLiteral(const AsciiLiteral<Left>& left, const AsciiLiteral<Right>& right) {
        static_assert(Left + Right == Size + 1);
        for (std::size_t i = 0; i < Left - 1; ++i)
            put(i, std::string_view(left)[i]);
        for (std::size_t i = 0; i < Right - 1; ++i)
            put(Left - 1 + i, std::string_view(right)[i]);
    }

    constexpr operator std::string_view() const { return {bytes, Size - 1}; }
    constexpr operator std::u16string_view() const { return wide(); }

    /// A zero stands behind it.
    constexpr std::u16string_view wide() const { return {units, Size - 1}; }
    std::u16string text() const { return std::u16string(wide()); }

private:
    constexpr void put(std::size_t place, char character) {
        bytes[place] = character;
        units[place] = static_cast<unsigned char>(character);
    }

    char bytes[Size] = {};
    char16_t units[Size] = {};
};

template <std::size_t Left, std::size_t Right>
constexpr auto operator+(const AsciiLiteral<Left>& left, const AsciiLiteral<Right>& right) {
    return AsciiLiteral<Left + Right - 1>(left, right);
}

template <std::size_t Left, std::size_t Right>
constexpr auto operator+(const char (&left)[Left], const AsciiLiteral<Right>& right) {
    return AsciiLiteral<Left>(left) + right;
}

template <std::size_t Left, std::size_t Right>
constexpr auto operator+(const AsciiLiteral<Left>& left, const char (&right)[Right]) {
    return left + AsciiLiteral<Right>(right);
}

template <std::size_t Size>
bool operator==(std::u16string_view left, const AsciiLiteral<Size>& right) {
    return left == right.wide();
}

template <std::size_t Size>
bool operator!=(std::u16string_view left, const AsciiLiteral<Size>& right) {
    return left != right.wide();
}

} // namespace opc::model
