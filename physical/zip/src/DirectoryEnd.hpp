#pragma once

#include "ByteSource.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace opc::physical::zip {

/// What the records after the directory of an archive say about it.
struct DirectoryEnd {
    std::uint64_t itemCount = 0;
    std::uint64_t offset = 0; ///< of the directory
    std::uint64_t size = 0;   ///< of the directory, in bytes
    std::string comment;
    std::uint64_t archiveEnd = 0;                ///< the offset after the last record and its comment
    std::vector<std::uint64_t> otherDirectories; ///< where end records in contents say that theirs are
    bool hidesRecord = false; ///< within a record behind the directory stands the mark of another one
    bool lacksZip64 = false;  ///< its numbers refer to a ZIP64 record, which isn't there
};

/// Finds the end of the directory. There must be no gap between the directory, the records and the end of the
/// archive: programs that look elsewhere would find another content.
/// @param lenient  whether bytes without another record of this kind may follow them
DirectoryEnd readDirectoryEnd(ByteSource& archive, const std::string& place, bool lenient);

/// @param count  the number of bytes after `DirectoryEnd::archiveEnd`
/// @return words for a message
std::string describeBytesBehind(std::uint64_t count);

/// Throws if a directory can't be read.
[[noreturn]] void failDirectory(const std::string& place, const std::string& what);

/// @return `count` bytes of the directory or of the records after it: in memory if they are there, otherwise in
///         `buffer`
const unsigned char* lookAtRecord(ByteSource& archive, const std::string& place, std::uint64_t offset,
                                  std::vector<unsigned char>& buffer, std::size_t count);

/// Reads exactly `count` bytes of a record of the directory.
void readRecord(ByteSource& archive, const std::string& place, std::uint64_t offset, unsigned char* buffer,
                std::size_t count);

} // namespace opc::physical::zip
