#include "TextPool.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::scanning {

std::string_view TextPool::add(const std::u16string& text) {
    auto* const begin = static_cast<char*>(memory->allocate(text.size(), 1));
    char16_t seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        begin[i] = static_cast<char>(text[i]);
        seen |= text[i];
    }
    if (seen < 0x80)
        return {begin, text.size()};
    const std::string converted = toUDEString(text);
    auto* const copy = static_cast<char*>(memory->allocate(converted.size(), 1));
    std::copy(converted.begin(), converted.end(), copy);
    return {copy, converted.size()};
}

} // namespace opc::scanning
