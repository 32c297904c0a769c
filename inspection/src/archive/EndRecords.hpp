#pragma once

#include "archive/ArchiveContents.hpp"
#include "archive/RecordBytes.hpp"

#include <cstdint>
#include <optional>

namespace opc::inspection::archive {

/// Where the directory of an archive is, as far as it can be told.
struct DirectoryPlace {
    std::uint64_t start = 0;
    std::uint64_t end = 0; ///< as the records say
    std::uint64_t itemCount = 0;
    std::uint64_t shift =
        0; ///< to add to each offset that records state, modulo 2^64: they don't count what stands in front
};

/// Reads the records at the end of the archive: the last one that can be meant. What is wrong with them becomes faults.
/// @return nothing if there is no directory that could be read
std::optional<DirectoryPlace> readEndRecords(RecordBytes& bytes, ArchiveContents& contents);

} // namespace opc::inspection::archive
