#pragma once

#include <string>

namespace opctool {

enum class Color { None, Bold, Red, Green, Yellow };

/// The text in a colour of the terminal.
inline std::string paint(const std::string& text, Color color) {
    constexpr const char* CODES[] = {"", "1", "31", "32", "33"};
    if (color == Color::None)
        return text;
    return std::string("\033[") + CODES[static_cast<int>(color)] + "m" + text + "\033[0m";
}

} // namespace opctool
