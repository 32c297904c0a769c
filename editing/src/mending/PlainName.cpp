#include "mending/PlainName.hpp"

#include <algorithm>
#include <cctype>

namespace opc::editing::mending {

namespace {

constexpr char HEX_DIGITS[] = "0123456789ABCDEF";

bool isUnreserved(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("-._~").find(c) != std::string_view::npos;
}

bool isPlain(char c) {
    return isUnreserved(c) || std::string_view("!$&'()*+,;=:@/").find(c) != std::string_view::npos;
}

int hexValue(char c) {
    const auto* const found = std::find(HEX_DIGITS, HEX_DIGITS + 16, c >= 'a' ? c - 'a' + 'A' : c);
    return found == HEX_DIGITS + 16 ? -1 : static_cast<int>(found - HEX_DIGITS);
}

/// The character that is percent-encoded here; -1 if none is.
int encodedAt(std::string_view name, std::size_t place) {
    if (name[place] != '%' || place + 2 >= name.size())
        return -1;
    const int high = hexValue(name[place + 1]);
    const int low = hexValue(name[place + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

} // namespace

std::string plainName(std::string_view name) {
    std::string plain;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i] == '\\' ? '/' : name[i];
        const int encoded = encodedAt(name, i);
        if (c == '/' && (plain.empty() || plain.back() == '/'))
            continue;
        if (encoded >= 0 && encoded < 0x80 && isUnreserved(static_cast<char>(encoded))) {
            plain += static_cast<char>(encoded);
            i += 2;
        } else if (encoded >= 0) {
            plain.append(name, i, 3);
            i += 2;
        } else if (isPlain(c)) {
            plain += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            plain.append({'%', HEX_DIGITS[byte >> 4U], HEX_DIGITS[byte & 15U]});
        }
    }
    return plain;
}

} // namespace opc::editing::mending
