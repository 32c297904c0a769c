#pragma once

#include "memory/Arena.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// The keys of part names, which decide whether two names are equal: in lower case, in UTF-8, because a URI is
/// US-ASCII. They are in one block of memory in the order of arrival, which is the order in which they are compared.
class PartKeys {
public:
    /// @param name  in US-ASCII
    template <typename Unit>
    std::string_view keep(std::basic_string_view<Unit> name) {
        char* const kept = allocate(name.size());
        std::transform(name.begin(), name.end(), kept, [](Unit unit) {
            return static_cast<char>(unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit);
        });
        return {kept, name.size()};
    }

    std::string_view join(std::string_view left, std::string_view right) {
        char* const kept = allocate(left.size() + right.size());
        std::copy(right.begin(), right.end(), std::copy(left.begin(), left.end(), kept));
        return {kept, left.size() + right.size()};
    }

private:
    char* allocate(std::size_t size) { return static_cast<char*>(memory.allocate(size, 1)); }

    std::array<std::byte, 2048> first; // enough for most packages
    Arena memory{first.data(), first.size()};
};

/// Sorts parts by their keys. Of parts with the same key, the first one stays, with the content of the last one.
template <typename Found>
void sortByKey(std::vector<Found>& parts) {
    std::stable_sort(parts.begin(), parts.end(),
                     [](const Found& left, const Found& right) { return left.key < right.key; });

    std::size_t kept = 0;
    for (Found& part : parts) {
        if (kept > 0 && parts[kept - 1].key == part.key)
            parts[kept - 1].physicalPart = part.physicalPart;
        else if (&parts[kept++] != &part)
            parts[kept - 1] = std::move(part);
    }
    parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(kept), parts.end());
}

} // namespace opc::model
