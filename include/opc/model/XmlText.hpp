#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace opc::model {

/// A name, a namespace or another fixed text of XML documents. It has two forms: the bytes that stand in a document,
/// and the characters that Xerces takes.
/// @tparam Size  with the zero at the end. The text is ASCII
template <std::size_t Size>
class XmlText {
public:
    constexpr explicit XmlText(const char (&text)[Size]) {
        for (std::size_t i = 0; i < Size; ++i) {
            bytes[i] = text[i];
            characters[i] = static_cast<unsigned char>(text[i]);
        }
    }

    constexpr operator std::string_view() const { return {bytes.data(), Size - 1}; }
    constexpr operator std::u16string_view() const { return {characters.data(), Size - 1}; }

    /// Ends with a zero, and lives as long as this object.
    constexpr const char16_t* wide() const { return characters.data(); }

private:
    std::array<char, Size> bytes{};
    std::array<char16_t, Size> characters{};
};

} // namespace opc::model
