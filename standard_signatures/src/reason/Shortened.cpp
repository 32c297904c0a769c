#include "reason/Shortened.hpp"

#include <algorithm>

namespace opc::standard_signatures {

std::string shortened(std::string_view text, std::size_t most) {
    std::size_t size = std::min(text.size(), most);
    while (size < text.size() && size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80)
        --size; // not within a character
    return std::string(text.substr(0, size)).append(size < text.size() ? "…" : "");
}

} // namespace opc::standard_signatures
