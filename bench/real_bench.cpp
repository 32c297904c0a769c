// Opening and listing packages as people have them, beside the least that it can cost: the directory, and zlib and
// expat over the content types and the relationships parts, collected and not checked.
//
//   real_bench [FOLDER] [ROUNDS] [THREADS]
//
// Without a folder it takes the documents of office programs among the tests. Both sides take each file in turn, and
// the shortest of their working times counts; so what else the machine does mostly falls out of the ratio. The cold
// row is the first package that a process opens.

#include "RawListing.hpp"
#include "WorkTime.hpp"

#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace opc::model;

using Work = std::size_t (*)(const fs::path&);

/// @return how many characters the names, content types and relationships of the package have
std::size_t listPackage(const fs::path& path) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    package.open(opc::interfaces::OpenMode::ReadOnly);
    std::size_t size = 0;
    const auto add = [&](const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships())
            size +=
                relationship.getID().size() + relationship.getType().size() + relationship.getTarget().size();
    };
    add(package);
    for (const Part& part : package.getParts()) {
        size += part.getName().toString().size() + part.getContentType().toString().size();
        add(part);
    }
    return size;
}

struct Times {
    std::vector<double> ours;
    std::vector<double> raw;

    void add(double our, double other) {
        ours.push_back(our);
        raw.push_back(other);
    }
};

double sumOf(const std::vector<double>& times) {
    double sum = 0;
    for (const double time : times)
        sum += time;
    return sum;
}

void printRow(const char* title, const Times& times) {
    std::vector<double> ratios;
    double logarithms = 0;
    for (std::size_t i = 0; i < times.ours.size(); ++i) {
        ratios.push_back(times.ours[i] / times.raw[i]);
        logarithms += std::log(ratios.back());
    }
    std::sort(ratios.begin(), ratios.end());
    const auto percentile = [&](std::size_t share) { return ratios[(ratios.size() - 1) * share / 100]; };
    const auto count = static_cast<double>(ratios.size());
    std::printf("%-22s %7.2f %6.2f %6.2f %6.2f %6.2f %6.2f %10.1f %8.1f\n", title,
                std::exp(logarithms / count), sumOf(times.ours) / sumOf(times.raw), percentile(50),
                percentile(90), percentile(99), ratios.back(), sumOf(times.ours) / count * 1e6,
                sumOf(times.raw) / count * 1e6);
}

bool canBeOpened(const fs::path& path) {
    try {
        return listPackage(path) + bench::listRawPackage(path) != 0;
    } catch (const std::exception& failure) {
        std::printf("left out: %s: %s\n", path.filename().c_str(), failure.what());
        return false;
    }
}

/// Runs `action`, which gives a number, in a process of its own.
template <typename Action>
double inChild(Action&& action) {
    int ends[2];
    double result = -1;
    if (::pipe(ends) != 0)
        return result;
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            result = action();
        } catch (const std::exception&) {
        }
        ::_exit(::write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
    }
    ::close(ends[1]);
    if (child < 0 || ::read(ends[0], &result, sizeof result) != sizeof result)
        result = -1;
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return result;
}

double firstTime(Work work, const fs::path& path) {
    return inChild([&] { return bench::workTime([&] { work(path); }).count(); });
}

Times measureCold(const std::vector<fs::path>& files, int rounds) {
    Times times;
    for (const fs::path& file : files) {
        double ours = firstTime(listPackage, file);
        double raw = firstTime(bench::listRawPackage, file);
        for (int round = 1; round < rounds; ++round) {
            ours = std::min(ours, firstTime(listPackage, file));
            raw = std::min(raw, firstTime(bench::listRawPackage, file));
        }
        times.add(ours, raw);
    }
    return times;
}

Times measureWarm(const std::vector<fs::path>& files, int rounds) {
    std::vector<bench::BestTime> ours(files.size());
    std::vector<bench::BestTime> raw(files.size());
    for (int round = 0; round < rounds;
         ++round) // not a file's rounds at once: its memory would lie in the cache
        for (std::size_t i = 0; i < files.size(); ++i) {
            ours[i].take([&] { listPackage(files[i]); });
            raw[i].take([&] { bench::listRawPackage(files[i]); });
        }
    Times times;
    for (std::size_t i = 0; i < files.size(); ++i)
        times.add(ours[i].milliseconds() / 1000, raw[i].milliseconds() / 1000);
    return times;
}

/// By the clock, all files `rounds` times, as many at once as there are threads.
double filesPerSecond(Work work, const std::vector<fs::path>& files, int rounds, unsigned threads) {
    std::atomic<std::size_t> next{0};
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> running;
    for (unsigned i = 0; i < threads; ++i)
        running.emplace_back([&] {
            for (std::size_t taken; (taken = next++) < files.size() * static_cast<std::size_t>(rounds);)
                work(files[taken % files.size()]);
        });
    for (std::thread& thread : running)
        thread.join();
    const bench::Seconds time = std::chrono::steady_clock::now() - start;
    return static_cast<double>(files.size()) * rounds / time.count();
}

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    // In a process of its own, so that none is opened in this one before the cold ones are measured.
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const fs::path& path) {
                                   return inChild([&] {
                                              const bool can = canBeOpened(path);
                                              std::fflush(stdout);
                                              return can ? 1.0 : -1.0;
                                          }) < 0;
                               }),
                files.end());
    return files;
}

} // namespace

int main(int argc, char** argv) {
    const fs::path folder = argc > 1 ? argv[1] : OPCMODEL_OFFICE_FILES;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 10;
    const unsigned threads =
        argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : std::thread::hardware_concurrency();
    const std::vector<fs::path> files = filesIn(folder);
    if (files.empty() || rounds < 1)
        return 1;
    const Times cold = measureCold(files, std::min(rounds, 3));
    std::printf("%zu files, working time beside the raw work, and its mean in microseconds\n"
                "%-22s %7s %6s %6s %6s %6s %6s %10s %8s\n",
                files.size(), "", "geomean", "sum", "50 %", "90 %", "99 %", "most", "ours", "raw");
    printRow("first of a process", cold);
    printRow("warm", measureWarm(files, rounds));
    for (const unsigned count : {1U, threads})
        std::printf("%u threads: %.0f files a second, raw %.0f\n", count,
                    filesPerSecond(listPackage, files, rounds, count),
                    filesPerSecond(bench::listRawPackage, files, rounds, count));
    return 0;
}
