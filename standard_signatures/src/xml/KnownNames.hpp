#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace opc::standard_signatures {

/// Whether a list of names can be searched: it is sorted by octets.
template <std::size_t Size>
constexpr bool areSorted(const std::string_view (&names)[Size]) {
    for (std::size_t i = 1; i < Size; ++i)
        if (names[i - 1] >= names[i])
            return false;
    return true;
}

template <std::size_t Size>
bool isAmong(std::string_view name, const std::string_view (&names)[Size]) {
    return std::binary_search(std::begin(names), std::end(names), name);
}

} // namespace opc::standard_signatures
