#pragma once

#include "ByteSource.hpp"

#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical {
struct ZipOptions;
}

namespace opc::physical::zip {

/// The position of an item in the archive's directory.
using ItemIndex = std::uint32_t;

/// What the directory says of an item.
struct DirectoryEntry {
    std::string_view name;    ///< UTF-8
    std::string_view rawName; ///< as it stands in the archive; empty if that is the same
    std::uint64_t size = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t offset = 0; ///< of its local header
    std::uint64_t end = 0;    ///< what belongs to the item ends here: the next item or the directory begins
    std::uint64_t record = 0; ///< offset of this entry
    std::uint32_t crc = 0;
    std::uint16_t method = 0;
    std::uint16_t flags = 0;

    std::string_view storedName() const { return rawName.empty() ? name : rawName; }
};

struct ArchiveDirectory {
    std::pmr::monotonic_buffer_resource names; ///< what the names of `entries` stand in
    std::vector<DirectoryEntry> entries;
    std::uint64_t end = 0; ///< behind the last entry
    std::string comment;   ///< of the archive
};

/// Whether an item expands more than the limits let it.
bool exceedsRatio(const DirectoryEntry& entry, const ZipOptions& limits);

/// Reads the directory at the end of an archive, once it is certain that it is within the limits, and checks
/// that the items lie in front of it, none in the bytes of another.
/// @param place      the archive's name for messages
/// @param directory  empty before
void readDirectory(ByteSource& archive, const std::string& place, const ZipOptions& limits,
                   ArchiveDirectory& directory);

} // namespace opc::physical::zip
