#pragma once

#include "archive/ArchiveContents.hpp"
#include "archive/RecordBytes.hpp"

#include <opc/physical/ZipOptions.hpp>

namespace opc::inspection::archive {

/// Finds out which bytes of the archive belong to nothing, and which belong to two. Local headers in the former are hidden
/// items, which are added behind the others.
/// @param order  the items that have a place, by their places
void readLayout(RecordBytes& bytes, const physical::ZipOptions& limits, const std::vector<std::size_t>& order,
                ArchiveContents& contents);

} // namespace opc::inspection::archive
