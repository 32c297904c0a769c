#pragma once

#include <opc/inspection/Archive.hpp>

#include <string>

namespace opctool {

class FileRun;
struct ReadOptions;

/// The archive of a run as it lies, for commands that don't open it as a package.
/// @throws opc::Exception  it can't be read
opc::inspection::Archive openArchive(const FileRun& run);

/// The same for another file of a run; "-" is standard input.
opc::inspection::Archive openArchive(const std::string& path, const ReadOptions& options);

} // namespace opctool
