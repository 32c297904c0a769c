#pragma once

#include <opc/inspection/Archive.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace opc::inspection::archive {

/// Bytes of the archive that records take: from `start` up to `end`.
struct Extent {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
};

/// What the readers of an archive find out, one after the other.
struct ArchiveContents {
    std::vector<ArchiveItem> items;
    std::vector<ArchiveGap> gaps;
    std::vector<ArchiveFault> faults;
    bool hasDirectory = false;
    Extent directory;  ///< the entries that were read
    Extent endRecords; ///< from the first one to behind the comment
    std::string comment;

    void addFault(std::string_view rule, std::optional<std::size_t> item, std::optional<std::uint64_t> offset,
                  std::string message) {
        faults.push_back({rule, item, offset, std::move(message)});
    }
};

} // namespace opc::inspection::archive
