#pragma once

#include "hash/TextHash.hpp"
#include "subject/Subject.hpp"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::inspection {

/// The parts of an archive, in the order of their first items.
class PartTable {
public:
    explicit PartTable(const Archive& archive);
    PartTable(const PartTable&) = delete;
    PartTable& operator=(const PartTable&) = delete;

    std::vector<PartView>& parts() { return all; }
    const std::vector<PartView>& parts() const { return all; }

    /// Of two parts that have the same name, the first; null if there is none.
    const PartView* find(std::string_view name) const;

    /// Whether there are pieces of such a part, but not all of them.
    bool isIncomplete(std::string_view name) const;

    /// The items of the content types stream: one, or its pieces in their order. Of several streams, those of the first.
    const std::vector<const ArchiveItem*>& contentTypes() const { return contentTypesItems; }

private:
    using Places = std::unordered_map<std::string, std::size_t, TextHash>;

    void add(const ArchiveItem& item, Places& joined);

    std::vector<PartView> all;
    Places byKey;
    std::unordered_set<std::string, TextHash> incomplete; ///< keys
    std::vector<const ArchiveItem*> contentTypesItems;
};

} // namespace opc::inspection
