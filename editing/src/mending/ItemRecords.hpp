#pragma once

#include <opc/inspection/Archive.hpp>

#include <cstdint>
#include <string>

namespace opc::editing::mending {

/// The fields of an item's records in an archive that is being written.
struct ItemRecord {
    std::string name; ///< its bytes
    std::uint16_t versionMadeBy = 0x0314;
    std::uint16_t versionNeeded = 20;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint16_t time = 0;
    std::uint16_t date = 0x21; ///< the first of January 1980
    std::uint32_t checksum = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t size = 0;
    std::string extraFields; ///< without sizes
    std::string comment;
    std::uint32_t externalAttributes = 0100644U << 16;

    /// Sets version and flags to what the item needs. Sizes and checksum stand in front of its content from now on.
    void simplify();

    std::string localHeader() const;

    /// Appends the entry of the directory for an item whose local header is at `offset`.
    void append(std::string& directory, std::uint64_t offset) const;
};

/// What the archive says of an item: the directory, or for a hidden item its local header and its data descriptor.
/// @param item  if it is hidden, its end is known
ItemRecord recordOf(const inspection::ArchiveItem& item);

/// Gives a record the sizes, the checksum and the method of a new content.
/// @return the content as it goes into the archive
std::string setContent(ItemRecord& record, const std::string& content);

} // namespace opc::editing::mending
