#pragma once

#include "WorkTime.hpp"

#include <filesystem>
#include <functional>
#include <vector>

namespace bench {

/// Something that is done with a file.
using FileWork = std::function<void(const std::filesystem::path&)>;

/// One time for each of several files.
using FileTimes = std::vector<Seconds>;

/// The ZIP archives of a folder that `work` can process, sorted by name. Names the others on standard error. The work
/// runs in separate processes, so that it warms nothing up in this one.
std::vector<std::filesystem::path> filesFor(const std::filesystem::path& folder, const FileWork& work);

/// The shortest CPU time of each work with each file. All works process a file one after the other, so other load on
/// the machine mostly cancels out of their ratios. Each round begins with another work, which brings the file into
/// the processor's cache. A round processes all files, so that they aren't in that cache beforehand.
/// @return for each work, the times of all files
std::vector<FileTimes> measure(const std::vector<std::filesystem::path>& files,
                               const std::vector<FileWork>& works, int rounds);

/// The same for the first work of a process.
std::vector<FileTimes> measureFirst(const std::vector<std::filesystem::path>& files,
                                    const std::vector<FileWork>& works, int rounds);

/// Prints the heading of `printRatios`.
void printHeading(const char* title);

/// Prints the ratios of the times of two works (geometric mean, ratio of the sums, percentiles) and the mean times in
/// microseconds.
void printRatios(const char* title, const FileTimes& ours, const FileTimes& others);

} // namespace bench
