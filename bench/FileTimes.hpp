#pragma once

#include "WorkTime.hpp"

#include <filesystem>
#include <functional>
#include <vector>

namespace bench {

/// Something to be done with a file.
using FileWork = std::function<void(const std::filesystem::path&)>;

/// One time for each of some files.
using FileTimes = std::vector<Seconds>;

/// The ZIP archives of a folder, by name, that `work` can be done with. The others are named on standard error. The work
/// is done in processes of their own, so that nothing is warm in this one.
std::vector<std::filesystem::path> filesFor(const std::filesystem::path& folder, const FileWork& work);

/// The shortest working time of each work with each file. All works take a file in turn, so that what else the machine
/// does mostly falls out of their ratios; another one each round comes first, and brings the file into the cache of the
/// processor. All files are taken before the next round, so that they don't lie there already.
/// @return for each of the works, the times of all files
std::vector<FileTimes> measure(const std::vector<std::filesystem::path>& files,
                               const std::vector<FileWork>& works, int rounds);

/// The same, where each time is that of the first work of a process.
std::vector<FileTimes> measureFirst(const std::vector<std::filesystem::path>& files,
                                    const std::vector<FileWork>& works, int rounds);

/// Prints what stands above the rows of `printRatios`.
void printHeading(const char* title);

/// Prints the ratios of the times of two works: their geometric mean, the ratio of the sums, percentiles; and the mean
/// times in microseconds.
void printRatios(const char* title, const FileTimes& ours, const FileTimes& others);

} // namespace bench
