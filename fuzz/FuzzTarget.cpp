#include "FuzzTarget.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace opc::fuzz {

void require(bool holds, const char* property) {
    if (holds)
        return;
    std::cerr << "doesn't hold: " << property << std::endl;
    std::abort();
}

void requireEqual(const std::u16string& left, const std::u16string& right, const char* property) {
    if (left != right)
        std::cerr << toUDEString(left) << "\n  against\n" << toUDEString(right) << '\n';
    require(left == right, property);
}

std::u16string toText(const Bytes& input) {
    if (input.size() < 2 || input[0] != 0xFF || input[1] != 0xFE)
        return opc::toString(std::string(input.begin(), input.end()), true);
    std::u16string text;
    for (std::size_t i = 2; i + 1 < input.size(); i += 2)
        text += static_cast<char16_t>(input[i] | input[i + 1] << 8);
    return text;
}

std::vector<Bytes> split(const std::uint8_t* data, std::size_t size, unsigned char separator) {
    std::vector<Bytes> pieces;
    const std::uint8_t* const end = data + size;
    for (const std::uint8_t* begin = data;;) {
        const std::uint8_t* const found = std::find(begin, end, separator);
        pieces.emplace_back(begin, found);
        if (found == end)
            return pieces;
        begin = found + 1;
    }
}

} // namespace opc::fuzz
