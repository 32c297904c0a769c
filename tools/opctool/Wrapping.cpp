#include "Wrapping.hpp"

#include <algorithm>
#include <sstream>

namespace opctool {

std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string wrap(const std::string& text, std::size_t indent, std::size_t begin) {
    std::string lines(begin < indent ? indent - begin : 0, ' ');
    std::size_t column = std::max(begin, indent);
    std::istringstream words(text);
    bool isFirst = true;
    for (std::string word; words >> word; isFirst = false) {
        if (!isFirst && column + 1 + widthOf(word) > TEXT_WIDTH) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += widthOf(word);
    }
    return lines + '\n';
}

} // namespace opctool
