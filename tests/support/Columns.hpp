#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>

namespace opc::test {

/// What stands between the bars of a row of a table, as in u"base | reference | result".
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

} // namespace opc::test
