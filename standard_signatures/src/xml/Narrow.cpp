#include "xml/Narrow.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::standard_signatures {

bool isASCII(std::u16string_view text) {
    char16_t all = 0;
    for (const char16_t c : text) // without a branch, for vector instructions
        all = static_cast<char16_t>(all | c);
    return all < 0x80;
}

std::string narrow(std::u16string_view text) {
    return isASCII(text) ? std::string(text.begin(), text.end()) : toUDEString(std::u16string(text));
}

bool isText(std::u16string_view text, std::string_view expected) {
    return std::equal(text.begin(), text.end(), expected.begin(), expected.end(),
                      [](char16_t left, char right) { return left == static_cast<unsigned char>(right); });
}

} // namespace opc::standard_signatures
