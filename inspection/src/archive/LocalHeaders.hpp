#pragma once

#include "archive/ArchiveContents.hpp"
#include "archive/RecordBytes.hpp"

#include <optional>

namespace opc::inspection::archive {

/// A local header, whole or not at all.
struct LocalHeader {
    ItemHeader header;
    std::uint64_t end = 0; ///< offset behind it
};

/// @return nothing if there is none at `offset`, or it is cut off
std::optional<LocalHeader> readLocalHeader(RecordBytes& bytes, std::uint64_t offset);

/// Reads the local header and the data descriptor of each item that the directory lists, in the order of their places, and
/// compares them with the directory.
/// @param order  gets the items that have a place, by their places
void readLocalHeaders(RecordBytes& bytes, ArchiveContents& contents, std::vector<std::size_t>& order);

} // namespace opc::inspection::archive
