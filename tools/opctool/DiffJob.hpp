#pragma once

#include <opc/inspection/Archive.hpp>

#include <string>
#include <vector>

namespace opctool {

class FileRun;

/// What `diff --job` is asked for.
struct DiffJobArguments {
    std::string
        path; ///< of the new file; "-" is standard output, and then all contents are in the job; empty for no job
    bool noCheck = false;         ///< as of `apply`, for which the job is
    bool breakSignatures = false; ///< the same
};

/// Writes a job that makes the first package hold what the second does. Large contents go to a folder beside it.
/// @param other  what messages call the second package
/// @param names  of the parts that it is to be about; all if there are none
/// @return whether there are differences
/// @throws opc::Exception  no job does that, or `apply` would refuse it; the file or the folder exists already or can't be
///                         written, or a content can't be read
bool writeDiffJob(FileRun& run, const opc::inspection::Archive& before, const opc::inspection::Archive& now,
                  const std::string& other, const std::vector<std::string>& names,
                  const DiffJobArguments& arguments);

} // namespace opctool
