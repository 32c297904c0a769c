#pragma once

#include <string>
#include <vector>

namespace opc::model {

/// The bytes that stand for a text where it is digested or signed: its code units, low byte first.
inline std::vector<unsigned char> toSignedBytes(const std::u16string& text) {
    std::vector<unsigned char> bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
        bytes.push_back(static_cast<unsigned char>(unit >> 8));
    }
    return bytes;
}

} // namespace opc::model
