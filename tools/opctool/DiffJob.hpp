#pragma once

#include <opc/inspection/Archive.hpp>

#include <string>
#include <vector>

namespace opctool {

class FileRun;

/// Writes a job that makes the first package hold what the second does. Large contents go to a folder beside it.
/// @param names  of the parts that it is to be about; all if there are none
/// @param path   of the new file; "-" is standard output, and then all contents are in the job
/// @return whether there are differences
/// @throws opc::Exception  the file or the folder exists already or can't be written, or a content can't be read
bool writeDiffJob(FileRun& run, const opc::inspection::Archive& before, const opc::inspection::Archive& now,
                  const std::vector<std::string>& names, const std::string& path);

} // namespace opctool
