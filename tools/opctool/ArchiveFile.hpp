#pragma once

#include <opc/inspection/Archive.hpp>

namespace opctool {

class FileRun;

/// The archive of a run as it lies, for commands that don't open it as a package.
/// @throws opc::Exception  it can't be read
opc::inspection::Archive openArchive(const FileRun& run);

} // namespace opctool
