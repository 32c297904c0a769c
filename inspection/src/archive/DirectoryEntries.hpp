#pragma once

#include "archive/EndRecords.hpp"

#include <opc/physical/ZipOptions.hpp>

namespace opc::inspection::archive {

/// Reads the entries of the directory as far as they are readable and within the limits. Items get their central header,
/// and the offset at which their local header should be.
void readDirectoryEntries(RecordBytes& bytes, const DirectoryPlace& place, const physical::ZipOptions& limits,
                          ArchiveContents& contents);

} // namespace opc::inspection::archive
