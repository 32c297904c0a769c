#pragma once

#include "ArchiveDirectory.hpp"

#include <string>

namespace opc::physical::zip {

/// Checks how the items lie in an archive: each begins with a local header that says what the directory says,
/// none reaches into another one, and between them stands no local header of an item that the directory
/// doesn't list. Finds where each item ends, and what the archive holds beside.
///
/// It reads the local header of each item, so that no program which goes by these sees another package. Of an
/// archive whose every read takes long, such as one on another machine, `ArchiveReader::lookAtStart` alone would
/// check them, each when its item is read.
/// @param place      the archive's name for messages
/// @param directory  as it was read
void checkLayout(ByteSource& archive, const std::string& place, ArchiveDirectory& directory);

} // namespace opc::physical::zip
