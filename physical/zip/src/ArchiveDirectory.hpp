#pragma once

#include "ByteSource.hpp"
#include "memory/Arena.hpp"

#include <opc/physical/ZipExport.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical {
struct ZipOptions;
}

namespace opc::physical::zip {

/// The position of an item in the archive's directory.
using ItemIndex = std::uint32_t;

/// What the directory says about an item.
struct DirectoryEntry {
    std::string_view name;    ///< UTF-8
    std::string_view rawName; ///< as it is in the archive; empty if it is the same
    std::uint64_t size = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t offset = 0; ///< the offset of its local header
    std::uint64_t end = 0;    ///< the end of its content, or of the data descriptor after it
    std::uint64_t record = 0; ///< the offset of this entry
    std::uint32_t crc = 0;
    std::uint16_t method = 0;
    std::uint16_t flags = 0;

    std::string_view storedName() const { return rawName.empty() ? name : rawName; }
};

/// A second name of an item, which some programs use.
struct OtherName {
    ItemIndex item = 0;
    std::string name; ///< possibly not valid UTF-8
};

/// Something about an item, or the archive, by which other programs may take it for something else.
struct Ambiguity {
    std::optional<ItemIndex> item; ///< none: it is about the end of the archive
    std::string reason;            ///< as words for a message
    bool isHidden = false;         ///< whoever goes by the directory notices nothing of it
};

/// Something in an archive beside the contents of its items.
struct UnreadData {
    std::string item; ///< the item that it belongs to; empty if it belongs to none
    std::string what;
    bool isLoose = false; ///< bytes that belong to no item or record
};

struct ArchiveDirectory {
    Arena names; ///< holds the names of `entries`
    std::vector<DirectoryEntry> entries;
    std::uint64_t start = 0;      ///< the offset of the first entry
    std::uint64_t end = 0;        ///< the offset after the last entry
    std::uint64_t archiveEnd = 0; ///< after the end record and its comment; the rest belongs to nothing
    std::string comment;          ///< of the archive
    std::vector<std::uint64_t> otherDirectories; ///< where end records in contents say that theirs are
    std::vector<OtherName> otherNames;
    std::vector<Ambiguity> ambiguities; ///< an item can have several
    std::vector<UnreadData> unread;
};

/// Whether an item asks for a newer program than its content needs, or has flags that its content doesn't need. Some programs
/// leave it out then.
/// @param version  that it asks for
bool asksForMore(std::uint16_t version, std::uint16_t flags);
constexpr const char* ASKS_FOR_MORE = "it asks for more than other programs may have";

/// Programs that look for records themselves take one within another record for the end or an item of the archive.
constexpr const char* HOLDS_A_MARK = " has the mark of a record of an archive";

/// @return why the content of an item can't be read, as words for a message; empty if it can
OPC_ZIP_EXPORT std::string whyUnreadable(const DirectoryEntry& entry);

/// Whether the expanded size of an item exceeds the limits.
OPC_ZIP_EXPORT bool exceedsRatio(const DirectoryEntry& entry, const ZipOptions& options);

/// Records other names, numbers and data of unknown kinds in the extra fields of an item. Throws if only the extra fields say
/// that the item is encrypted.
/// @param record  how messages name the record of the extra fields
/// @param place   the archive's name for messages
void inspectFields(const unsigned char* extra, std::size_t size, ItemIndex item, const char* record,
                   const std::string& place, ArchiveDirectory& directory);

/// Reads the directory at the end of an archive, after checking that it is within the limits, and checks that the
/// items come before it. The ends of the items aren't known yet.
/// @param place      the archive's name for messages
/// @param directory  empty before
void readDirectory(ByteSource& archive, const std::string& place, const ZipOptions& options,
                   ArchiveDirectory& directory);

} // namespace opc::physical::zip
