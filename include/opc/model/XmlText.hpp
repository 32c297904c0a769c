#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace opc::model {

/// A name, a namespace or another fixed text of XML documents, in ASCII. It has two forms: the bytes in a document, which
/// are scanned and composed, and the UTF-16 that Xerces and the model take.
/// @tparam Size  with the terminating zero
template <std::size_t Size>
class XmlText {
public:
    constexpr XmlText(const char (&text)[Size]) { // implicit, for literals
        for (std::size_t i = 0; i < Size; ++i)
            put(i, text[i]);
    }

    /// Appends `right` to `left`.
    template <std::size_t Left, std::size_t Right>
    constexpr XmlText(const XmlText<Left>& left, const XmlText<Right>& right) {
        static_assert(Left + Right == Size + 1);
        for (std::size_t i = 0; i < Left - 1; ++i)
            put(i, std::string_view(left)[i]);
        for (std::size_t i = 0; i < Right - 1; ++i)
            put(Left - 1 + i, std::string_view(right)[i]);
    }

    constexpr operator std::string_view() const { return {bytes, Size - 1}; }
    constexpr operator std::u16string_view() const { return wide(); }

    /// A null character follows it. It lives as long as this object.
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
constexpr auto operator+(const XmlText<Left>& left, const XmlText<Right>& right) {
    return XmlText<Left + Right - 1>(left, right);
}

template <std::size_t Left, std::size_t Right>
constexpr auto operator+(const char (&left)[Left], const XmlText<Right>& right) {
    return XmlText<Left>(left) + right;
}

template <std::size_t Left, std::size_t Right>
constexpr auto operator+(const XmlText<Left>& left, const char (&right)[Right]) {
    return left + XmlText<Right>(right);
}

template <std::size_t Size>
constexpr bool operator==(std::u16string_view left, const XmlText<Size>& right) {
    return left == right.wide();
}

template <std::size_t Size>
constexpr bool operator!=(std::u16string_view left, const XmlText<Size>& right) {
    return left != right.wide();
}

} // namespace opc::model
