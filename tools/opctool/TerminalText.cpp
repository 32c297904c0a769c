#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opctool {

std::string withoutControlCharacters(const std::string& text) {
    std::u16string units = opc::toString(text, true);
    std::replace_if(
        units.begin(), units.end(),
        [](char16_t unit) { return unit < u' ' || (unit >= 0x7F && unit < 0xA0); }, u' ');
    return opc::toUDEString(units);
}

} // namespace opctool
