#pragma once

#include "ArchiveDirectory.hpp"

#include <opc/physical/ZipExport.hpp>

#include <string>
#include <string_view>

/// @file
/// The records of an archive that is being written.

namespace opc::physical::zip {

/// The current date and time in the format of ZIP archives; times beyond that format become its earliest or latest one.
std::uint32_t dosTimeNow();
/// The same in UTC.
/// @param seconds  since 1970
std::uint32_t dosTimeOf(std::int64_t seconds);
constexpr std::uint32_t DOS_TIME_ORIGIN = 0x0021'0000; ///< the first of January 1980, midnight
constexpr std::uint32_t DOS_TIME_END = 0xFF9F'BF7D;    ///< the last second of 2107 that it can tell

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
OPC_ZIP_EXPORT std::string endRecords(std::uint64_t itemCount, std::uint64_t directoryOffset,
                                      std::uint64_t directorySize, const std::string& comment);

} // namespace opc::physical::zip
