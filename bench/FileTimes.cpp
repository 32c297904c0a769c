#include "FileTimes.hpp"

#include "Child.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numeric>

namespace bench {

namespace fs = std::filesystem;

namespace {

bool isArchive(const fs::path& path) {
    char start[2]{};
    return std::ifstream(path, std::ios::binary).read(start, sizeof start) && start[0] == 'P' &&
           start[1] == 'K';
}

bool canBeDone(const FileWork& work, const fs::path& path) {
    return inChild([&] {
               try {
                   work(path);
                   return 1;
               } catch (const std::exception& failure) {
                   std::fprintf(stderr, "left out: %s: %s\n", path.filename().c_str(), failure.what());
                   return -1;
               }
           }) > 0;
}

/// @param timeOf  measures a work with a file
template <typename TimeOf>
std::vector<FileTimes> shortestTimes(const std::vector<fs::path>& files, const std::vector<FileWork>& works,
                                     int rounds, TimeOf timeOf) {
    std::vector<FileTimes> times(works.size(), FileTimes(files.size(), Seconds::max()));
    for (int round = 0; round < rounds; ++round)
        for (std::size_t file = 0; file < files.size(); ++file)
            for (std::size_t turn = 0; turn < works.size(); ++turn) {
                const std::size_t work = (turn + static_cast<std::size_t>(round)) % works.size();
                times[work][file] = std::min(times[work][file], timeOf(works[work], files[file]));
            }
    return times;
}

Seconds timeOnce(const FileWork& work, const fs::path& file) {
    return workTime([&] { work(file); });
}

double sumOf(const FileTimes& times) {
    return std::accumulate(times.begin(), times.end(), Seconds(0)).count();
}

} // namespace

std::vector<fs::path> filesFor(const fs::path& folder, const FileWork& work) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file() && isArchive(entry.path()) && canBeDone(work, entry.path()))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<FileTimes> measure(const std::vector<fs::path>& files, const std::vector<FileWork>& works,
                               int rounds) {
    return shortestTimes(files, works, rounds, timeOnce);
}

std::vector<FileTimes> measureFirst(const std::vector<fs::path>& files, const std::vector<FileWork>& works,
                                    int rounds) {
    return shortestTimes(files, works, rounds, [](const FileWork& work, const fs::path& file) {
        return Seconds(inChild([&] { return timeOnce(work, file).count(); }));
    });
}

void printHeading(const char* title) {
    std::printf("%-36s %7s %6s %6s %6s %6s %6s %8s %8s\n", title, "geomean", "sum", "50 %", "90 %", "99 %",
                "most", "ours, us", "theirs");
}

void printRatios(const char* title, const FileTimes& ours, const FileTimes& others) {
    std::vector<double> ratios;
    double logarithms = 0;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        ratios.push_back(ours[i] / others[i]);
        logarithms += std::log(ratios.back());
    }
    std::sort(ratios.begin(), ratios.end());
    const auto percentile = [&](std::size_t share) { return ratios[(ratios.size() - 1) * share / 100]; };
    const auto count = static_cast<double>(ratios.size());
    std::printf("%-36s %7.2f %6.2f %6.2f %6.2f %6.2f %6.2f %8.1f %8.1f\n", title,
                std::exp(logarithms / count), sumOf(ours) / sumOf(others), percentile(50), percentile(90),
                percentile(99), ratios.back(), sumOf(ours) / count * 1e6, sumOf(others) / count * 1e6);
}

} // namespace bench
