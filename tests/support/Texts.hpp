#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace opc::test {

/// The texts between the bars of a table row, as in u"base | reference | result".
template <std::size_t Count, typename Text>
std::array<Text, Count> columns(const Text& row) {
    std::array<Text, Count> result;
    std::size_t start = 0;
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t end = row.find(Text{' ', '|', ' '}, start);
        if ((end == Text::npos) != (i + 1 == Count))
            throw std::logic_error("a row with another number of columns");
        result[i] = row.substr(start, end - start);
        start = end + 3;
    }
    return result;
}

/// The texts between the blanks of a text.
template <typename Text>
std::vector<Text> words(const Text& text) {
    std::vector<Text> result;
    for (std::size_t start = 0, end = 0; end != Text::npos; start = end + 1) {
        end = text.find(' ', start);
        if (end != start && start < text.size())
            result.push_back(text.substr(start, end - start));
    }
    return result;
}

/// @param text  a string or a literal, with any character type
template <typename Text>
auto repeated(const Text& text, std::size_t count) {
    const std::basic_string piece(text);
    auto all = piece.substr(0, 0);
    all.reserve(piece.size() * count);
    while (count-- > 0)
        all += piece;
    return all;
}

/// `text` with `replacement` instead of the first `what`, which must exist.
inline std::string replaced(std::string text, const std::string& what, const std::string& replacement) {
    const std::size_t position = text.find(what);
    if (position == std::string::npos)
        throw std::logic_error("not in the document: " + what);
    return text.replace(position, what.size(), replacement);
}

/// `text` with `replacement` instead of every `what`.
inline std::string replacedAll(std::string text, const std::string& what, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += replacement.size())
        text.replace(at, what.size(), replacement);
    return text;
}

/// `text` with `addition` after the first `what`.
inline std::string inserted(const std::string& text, const std::string& what, const std::string& addition) {
    return replaced(text, what, what + addition);
}

/// The piece of `text` from the first `begin` up to the next `end`, both of which must exist.
inline std::string piece(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t first = text.find(begin);
    const std::size_t last = text.find(end, first);
    if (last == std::string::npos)
        throw std::logic_error("not in the document: " + begin + " and " + end);
    return text.substr(first, last - first);
}

} // namespace opc::test
