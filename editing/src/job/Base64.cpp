#include "job/Base64.hpp"

#include <cstdint>

namespace opc::editing {

namespace {

constexpr std::string_view DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string toBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        std::uint32_t bits = 0;
        for (std::size_t j = 0; j < 3; ++j)
            bits = bits << 8U | (j < group.size() ? static_cast<unsigned char>(group[j]) : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            text += j <= group.size() ? DIGITS[bits >> (18 - 6 * j) & 0x3FU] : '=';
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPadding = i >= text.size() - padding;
        const std::size_t digit = isPadding ? 0 : DIGITS.find(text[i]);
        if (digit == std::string_view::npos)
            return std::nullopt;
        bits = bits << 6U | static_cast<std::uint32_t>(digit);
        if (i % 4 != 3)
            continue;
        for (unsigned shift = 24; shift > 0; shift -= 8)
            bytes += static_cast<char>(bits >> (shift - 8) & 0xFFU);
        bits = 0;
    }
    bytes.resize(bytes.size() - padding);
    if (toBase64(bytes) != text) // bits behind the last byte
        return std::nullopt;
    return bytes;
}

} // namespace opc::editing
