#include "TextPool.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::scanning {

std::string_view TextPool::add(const std::u16string& text) {
    const std::size_t length = text.size();
    const char16_t* const units = text.data(); // which no `char` that is written can change
    auto* const begin = static_cast<char*>(memory->allocate(length, 1));
    char16_t seen = 0;
    for (std::size_t i = 0; i < length; ++i) {
        begin[i] = static_cast<char>(units[i]);
        seen |= units[i];
    }
    if (seen < 0x80)
        return {begin, length};
    const std::string converted = toUDEString(text);
    auto* const copy = static_cast<char*>(memory->allocate(converted.size(), 1));
    std::copy(converted.begin(), converted.end(), copy);
    return {copy, converted.size()};
}

} // namespace opc::scanning
