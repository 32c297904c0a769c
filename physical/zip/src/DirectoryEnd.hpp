#pragma once

#include "ByteSource.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace opc::physical::zip {

/// What the records behind the directory of an archive say of it.
struct DirectoryEnd {
    std::uint64_t itemCount = 0;
    std::uint64_t offset = 0; ///< of the directory
    std::uint64_t size = 0;   ///< of the directory, in bytes
    std::string comment;
    std::uint64_t archiveEnd = 0; ///< offset behind the last record and its comment
};

/// Finds the end of the directory. The records must stand without a gap between the directory and the end of
/// the archive: where else they might be looked for, programs would differ on what the archive holds.
/// @param lenient  whether bytes may stand behind them that hold no other record of this kind
DirectoryEnd readDirectoryEnd(ByteSource& archive, const std::string& place, bool lenient);

/// @param count  of the bytes behind `DirectoryEnd::archiveEnd`
/// @return words for a message
std::string describeBytesBehind(std::uint64_t count);

/// Raises for a directory that can't be read.
[[noreturn]] void failDirectory(const std::string& place, const std::string& what);

/// @return `count` bytes of the directory or the records behind it, which the archive has: where they lie in memory,
/// else in `buffer`
const unsigned char* lookAtRecord(ByteSource& archive, const std::string& place, std::uint64_t offset,
                                  std::vector<unsigned char>& buffer, std::size_t count);

/// Reads all of `count` bytes of a record of the directory.
void readRecord(ByteSource& archive, const std::string& place, std::uint64_t offset, unsigned char* buffer,
                std::size_t count);

} // namespace opc::physical::zip
