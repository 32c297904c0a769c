#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace opc::model {

/// Appends the bytes that stand for a text where it is digested or signed: its code units, low byte first.
inline void appendSignedBytes(std::u16string_view text, std::vector<unsigned char>& bytes) {
    std::size_t place = bytes.size();
    bytes.resize(place + text.size() * 2);
    for (const char16_t unit : text) {
        bytes[place++] = static_cast<unsigned char>(unit & 0xFF);
        bytes[place++] = static_cast<unsigned char>(unit >> 8);
    }
}

inline std::vector<unsigned char> toSignedBytes(std::u16string_view text) {
    std::vector<unsigned char> bytes;
    appendSignedBytes(text, bytes);
    return bytes;
}

} // namespace opc::model
