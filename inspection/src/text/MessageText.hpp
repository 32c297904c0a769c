#pragma once

#include <string>
#include <string_view>

namespace opc::inspection {

/// A text of the package for a message: cut where it is long.
inline std::string shown(std::string_view text) {
    constexpr std::size_t MOST = 200;
    if (text.size() <= MOST)
        return std::string(text);
    std::size_t end = MOST;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) // within a character
        --end;
    return std::string(text.substr(0, end)) + "…";
}

} // namespace opc::inspection
