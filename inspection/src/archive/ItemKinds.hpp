#pragma once

#include "archive/ArchiveContents.hpp"

namespace opc::inspection::archive {

/// Tells what each item of the directory is to the package: by its name, and pieces by the other pieces.
void tellKinds(std::vector<ArchiveItem>& items);

} // namespace opc::inspection::archive
