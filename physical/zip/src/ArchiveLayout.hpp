#pragma once

#include "ArchiveDirectory.hpp"

#include <string>
#include <vector>

namespace opc::physical::zip {

/// Sorts the items by their places, and ends each where the next one or the directory begins. Reads nothing.
/// @param place      the archive's name for messages
/// @param directory  as it was read
/// @return the items in that order
/// @throws opc::Exception  an item overlaps the next one
std::vector<ItemIndex> findItemEnds(const std::string& place, ArchiveDirectory& directory);

/// Checks the layout of an archive: each item begins with a local header that agrees with the directory, no item
/// overlaps another one, and no local header of an unlisted item is between them. Finds the end of each item, and
/// lists what else the archive has.
///
/// It reads the local header of each item, so that no program which uses these headers sees another package.
/// @param place      the archive's name for messages
/// @param directory  as it was read
void checkLayout(ByteSource& archive, const std::string& place, ArchiveDirectory& directory);

} // namespace opc::physical::zip
