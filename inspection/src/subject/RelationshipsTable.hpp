#pragma once

#include "hash/TextHash.hpp"
#include "subject/PartTable.hpp"
#include "subject/Subject.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::inspection {

/// Reads a relationships part, and resolves its targets.
/// @param parts        of the package
/// @param part         one of them; gets to know whether it is whole
/// @param mostEntries  how many entries are read
RelationshipsView readRelationships(const Archive& archive, const PartTable& parts, PartView& part,
                                    std::uint64_t mostEntries);

/// All relationships parts of a package, in the order of their items, and where they lead.
class RelationshipsTable {
public:
    /// @param parts  gets to know which of its relationships parts are whole; must outlive this object
    RelationshipsTable(const Archive& archive, PartTable& parts);

    const std::vector<RelationshipsView>& views() const { return all; }
    const RelationshipsView* find(std::string_view source) const;
    bool isReached(const PartView& part) const { return reached.count(&part) != 0; }

private:
    void walk();

    std::vector<RelationshipsView> all;
    std::unordered_map<std::string, std::size_t, TextHash> bySource;
    std::unordered_set<const PartView*> reached;
};

} // namespace opc::inspection
