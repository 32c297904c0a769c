#pragma once

#include "ArchiveDirectory.hpp"

#include <string>

namespace opc::physical::zip {

/// Checks the layout of an archive: each item begins with a local header that agrees with the directory, no item
/// overlaps another one, and no local header of an unlisted item is between them. Finds the end of each item, and
/// lists what else the archive has.
///
/// It reads the local header of each item, so that no program which uses these headers sees another package. For an
/// archive with slow access, such as one on another machine, `ArchiveReader::lookAtStart` alone could check them,
/// each when its item is read.
/// @param place      the archive's name for messages
/// @param directory  as it was read
void checkLayout(ByteSource& archive, const std::string& place, ArchiveDirectory& directory);

} // namespace opc::physical::zip
