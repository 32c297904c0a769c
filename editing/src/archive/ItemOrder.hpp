#pragma once

#include <string_view>
#include <utility>

namespace opc::editing::archive {

/// Where an item stands in a new archive: programs recognise a file by its first items, the content types and the
/// relationships of the package. The others follow by name, or in no order.
class ItemOrder {
public:
    explicit ItemOrder(std::string_view item, bool isByName = true)
        : rank(item == "[Content_Types].xml" ? 0
               : item == "_rels/.rels"       ? 1
                                             : 2),
          name(isByName ? item : std::string_view()) {}

    bool operator<(const ItemOrder& other) const {
        return std::pair(rank, name) < std::pair(other.rank, other.name);
    }

private:
    int rank;
    std::string_view name;
};

} // namespace opc::editing::archive
