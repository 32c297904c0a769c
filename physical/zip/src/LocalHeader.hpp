#pragma once

#include "ArchiveDirectory.hpp"

#include <opc/physical/ZipExport.hpp>

#include <optional>
#include <string>

namespace opc::physical::zip {

/// Throws if the local header of an item contradicts the directory.
/// @param header   the whole header
/// @param archive  the archive's name for messages
void checkLocalHeader(const DirectoryEntry& entry, const unsigned char* header, const std::string& archive);

/// Whether a local header has a ZIP64 field. Some programs take the numbers in the data descriptor for larger ones then.
bool hasZip64Field(const unsigned char* header);

/// Finds the data descriptor of an item, which repeats sizes and checksum after the content: with or without a
/// signature, with sizes in 32 or 64 bits. Throws if the local header needs one and there is none, or if it
/// contradicts the directory.
/// @param header  the local header, which has been checked
/// @param behind  the bytes after the content
/// @return its size, 0 if there is none
std::size_t descriptorSize(const DirectoryEntry& entry, const unsigned char* header,
                           const unsigned char* behind, std::size_t count, const std::string& archive);
constexpr std::size_t LONGEST_DESCRIPTOR = 24;
constexpr std::size_t SHORTEST_LARGE_DESCRIPTOR = 20; ///< with sizes in 64 bits

/// The size of the data descriptor at `behind` if it agrees with the directory; nothing if it doesn't.
OPC_ZIP_EXPORT std::optional<std::size_t> matchDescriptor(const DirectoryEntry& entry,
                                                          const unsigned char* behind, std::size_t count);

/// Throws if an item can't be read.
[[noreturn]] void failItem(const DirectoryEntry& entry, const std::string& archive, const std::string& what);

} // namespace opc::physical::zip
