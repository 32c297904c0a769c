#pragma once

#include "ArchiveDirectory.hpp"

#include <string>
#include <string_view>

/// @file
/// The records of an archive that is being written.

namespace opc::physical::zip {

/// The current date and time in the format of ZIP archives, or the earliest time of that format.
std::uint32_t dosTimeNow();
constexpr std::uint32_t DOS_TIME_ORIGIN = 0x0021'0000; ///< the first of January 1980, midnight

/// The local header of a new item.
std::string localHeader(const DirectoryEntry& entry, std::uint32_t time);

/// The size of that header, which depends only on the name and on the size of the content.
std::size_t localHeaderSize(const DirectoryEntry& entry);

/// Appends the directory entry of a new item.
void appendRecord(std::string& directory, const DirectoryEntry& entry, std::uint32_t time);

/// Appends the directory entry of an item that is now at `offset`.
/// @param record  the old entry
void appendMovedRecord(std::string& directory, std::string_view record, std::uint64_t offset);

/// The records after the directory.
std::string endRecords(std::uint64_t itemCount, std::uint64_t directoryOffset, std::uint64_t directorySize,
                       const std::string& comment);

} // namespace opc::physical::zip
