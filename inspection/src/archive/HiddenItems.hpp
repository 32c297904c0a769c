#pragma once

#include "archive/ArchiveContents.hpp"
#include "archive/LocalHeaders.hpp"
#include "archive/RecordBytes.hpp"

#include <optional>
#include <vector>

namespace opc::inspection::archive {

/// Finds items that have a local header and stand in no directory: programs that read an archive from its start see them.
class HiddenItems {
public:
    /// @param most      how many items there may be in all
    /// @param contents  gets the hidden items
    HiddenItems(RecordBytes& bytes, std::uint64_t most, ArchiveContents& contents)
        : bytes(bytes), most(most), contents(contents) {}

    /// Looks through bytes that belong to no item of the directory.
    /// @return those that belong to no hidden item either
    std::vector<Extent> take(const Extent& unused);

private:
    std::optional<std::uint64_t> find(std::string_view signature, const Extent& where);
    ArchiveItem describe(std::uint64_t offset, LocalHeader local, std::uint64_t limit);
    void findEnd(ArchiveItem& item, std::uint64_t limit);

    RecordBytes& bytes;
    std::uint64_t most;
    ArchiveContents& contents;
};

} // namespace opc::inspection::archive
