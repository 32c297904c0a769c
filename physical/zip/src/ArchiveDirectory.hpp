#pragma once

#include "ByteSource.hpp"

#include <opc/physical/ZipExport.hpp>

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
    std::uint64_t end = 0;    ///< of its content, or of the data descriptor behind that
    std::uint64_t record = 0; ///< offset of this entry
    std::uint32_t crc = 0;
    std::uint16_t method = 0;
    std::uint16_t flags = 0;

    std::string_view storedName() const { return rawName.empty() ? name : rawName; }
};

/// A second name of an item, by which some programs call it.
struct OtherName {
    ItemIndex item = 0;
    std::string name; ///< may be no UTF-8
};

/// What an archive holds beside the contents of its items.
struct UnreadData {
    std::string item; ///< that it belongs to; empty if to none
    std::string what;
};

struct ArchiveDirectory {
    std::pmr::monotonic_buffer_resource names; ///< what the names of `entries` stand in
    std::vector<DirectoryEntry> entries;
    std::uint64_t start = 0;      ///< offset of the first entry
    std::uint64_t end = 0;        ///< behind the last entry
    std::uint64_t archiveEnd = 0; ///< behind the end record and its comment: what follows belongs to nothing
    std::string comment;          ///< of the archive
    std::vector<OtherName> otherNames;
    std::vector<UnreadData> unread;
};

/// @return why the content of an item can't be read, as words for a message; empty if it can
std::string whyUnreadable(const DirectoryEntry& entry);

/// Whether an item expands more than the limits let it.
OPC_ZIP_EXPORT bool exceedsRatio(const DirectoryEntry& entry, const ZipOptions& options);

/// Notes what extra fields of an item say beside numbers: other names, and data of unknown kinds. Raises if they
/// alone say that it is encrypted.
/// @param record  how messages name the record that they stand in
/// @param place   the archive's name for messages
void inspectFields(const unsigned char* extra, std::size_t size, ItemIndex item, const char* record,
                   const std::string& place, ArchiveDirectory& directory);

/// Reads the directory at the end of an archive, once it is certain that it is within the limits, and checks
/// that the items lie in front of it. Where each one ends isn't known then.
/// @param place      the archive's name for messages
/// @param directory  empty before
void readDirectory(ByteSource& archive, const std::string& place, const ZipOptions& options,
                   ArchiveDirectory& directory);

} // namespace opc::physical::zip
