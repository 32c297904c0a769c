#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace opc::model {

/// The bytes that stand for a text where it is digested or signed: its code units, low byte first.
inline std::vector<unsigned char> toSignedBytes(const std::u16string& text) {
    std::vector<unsigned char> bytes(text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes[2 * i] = static_cast<unsigned char>(text[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<unsigned char>(text[i] >> 8);
    }
    return bytes;
}

} // namespace opc::model
