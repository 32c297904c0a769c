#pragma once

#include <opc/editing/Unpacking.hpp>
#include <opc/inspection/Archive.hpp>

#include <vector>

namespace opc::editing::archive {

/// Whether nothing of the item would stand in a file: it only says that there is a folder.
bool isEmptyFolder(const inspection::ArchiveItem& item);

/// What an item has beside its content, or that it is hidden itself.
std::vector<HiddenContent> findHidden(const inspection::ArchiveItem& item);

/// Bytes that belong to no item.
std::vector<HiddenContent> findGaps(const inspection::Archive& archive);

/// All that an archive has beside the contents of the items in its directory.
std::vector<HiddenContent> findHidden(const inspection::Archive& archive);

/// The comment of the archive; nothing if it has none.
std::vector<HiddenContent> findComment(const inspection::Archive& archive);

} // namespace opc::editing::archive
