#pragma once

#include "ArchiveDirectory.hpp"

#include <string>
#include <string_view>

/// @file
/// The records of an archive in the making.

namespace opc::physical::zip {

/// Date and time as a ZIP archive has them: of now, or the origin of time there.
std::uint32_t dosTimeNow();
constexpr std::uint32_t DOS_TIME_ORIGIN = 0x0021'0000; ///< the first of January 1980, midnight

/// The local header of a new item.
std::string localHeader(const DirectoryEntry& entry, std::uint32_t time);

/// Its size, which rests on the name and the size of the content alone.
std::size_t localHeaderSize(const DirectoryEntry& entry);

/// Appends the directory's record of a new item.
void appendRecord(std::string& directory, const DirectoryEntry& entry, std::uint32_t time);

/// Appends the directory's record of an item that now lies at `offset`.
/// @param record  as it was
void appendMovedRecord(std::string& directory, std::string_view record, std::uint64_t offset);

/// What stands behind the directory.
std::string endRecords(std::uint64_t itemCount, std::uint64_t directoryOffset, std::uint64_t directorySize,
                       const std::string& comment);

} // namespace opc::physical::zip
