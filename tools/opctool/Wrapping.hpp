#pragma once

#include <cstddef>
#include <string>

namespace opctool {

/// How wide texts for people are.
constexpr std::size_t TEXT_WIDTH = 79;

/// How many characters a UTF-8 text has.
std::size_t widthOf(const std::string& text);

/// The words of a text in lines that are no longer than `TEXT_WIDTH` where its words allow that. Each line ends with a line
/// feed and begins with so many blanks, but the first where `begin` characters stand in its line already.
/// @param begin  how much of the first line is taken
std::string wrap(const std::string& text, std::size_t indent, std::size_t begin = 0);

} // namespace opctool
