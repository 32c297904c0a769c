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
    if (text.size() != expected.size())
        return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < text.size(); ++i) // without a branch, for vector instructions
        difference |= text[i] ^ static_cast<unsigned>(static_cast<unsigned char>(expected[i]));
    return difference == 0;
}

} // namespace opc::standard_signatures
