#pragma once

#include "ArchiveDirectory.hpp"

#include <string>

/// @file
/// The records of an archive in the making.

namespace opc::physical::zip {

/// Date and time as a ZIP archive has them: of now, or the origin of time there.
std::uint32_t dosTimeNow();
constexpr std::uint32_t DOS_TIME_ORIGIN = 0x0021'0000; ///< the first of January 1980, midnight

/// The local header of a new item. It has the same size before and after the content is written, when sizes
/// and checksum are known.
std::string localHeader(const DirectoryEntry& entry, std::uint32_t time);

/// The directory's record of a new item.
std::string directoryRecord(const DirectoryEntry& entry, std::uint32_t time);

/// The directory's record of an item that now lies at `offset`.
/// @param record  as it was
std::string movedRecord(const std::string& record, std::uint64_t offset);

/// What stands behind the directory.
std::string endRecords(std::uint64_t itemCount, std::uint64_t directoryOffset, std::uint64_t directorySize,
                       const std::string& comment);

} // namespace opc::physical::zip
