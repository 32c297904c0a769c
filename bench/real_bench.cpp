// Opening and listing packages like those of real users, compared with zlib and expat.
//
//   real_bench [FOLDER [ROUNDS [THREADS]]]   ratios, and files a second
//   real_bench --paced [FOLDER]              lists all files once for each line that it reads: see python_listing.py
//
// Without a folder it uses the documents of office programs among the tests, and packages that it makes in such
// shapes. `least` is `listRawPackage`, `straight` is `listStraightforwardly`; `lenient` lists as `opctool` does. The
// first work of a process is measured in a separate process.

#include "Child.hpp"
#include "FileTimes.hpp"
#include "RawListing.hpp"
#include "RealShapes.hpp"
#include "StraightListing.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace opc::model;
using bench::Seconds;
using Files = std::vector<fs::path>;

/// @return the number of characters of the package's names, content types and relationships
std::size_t listPackage(opc::interfaces::IPhysicalPackage& store) {
    Package package(store);
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

std::size_t listStrictly(const fs::path& path) {
    opc::physical::ZipPackage archive(path);
    return listPackage(archive);
}

/// Lists as `opctool` does.
std::size_t listLeniently(const fs::path& path) {
    opc::physical::ZipOptions options;
    options.lenient = true;
    opc::physical::ZipPackage archive(path, options);
    opc::physical::LenientPackage lenient(archive);
    return listPackage(lenient);
}

enum Side : std::size_t { Strict, Lenient, Least, Straight };
const std::vector<bench::FileWork> WORKS{listStrictly, listLeniently, bench::listRawPackage,
                                         bench::listStraightforwardly};

Files packagesIn(const fs::path& folder) {
    return bench::filesFor(folder, [](const fs::path& file) {
        for (const bench::FileWork& work : WORKS)
            work(file);
    });
}

void printRows(const std::string& title, const std::vector<bench::FileTimes>& times) {
    bench::printRatios((title + ", least").c_str(), times[Strict], times[Least]);
    bench::printRatios((title + ", straight").c_str(), times[Strict], times[Straight]);
    bench::printRatios((title + ", lenient, least").c_str(), times[Lenient], times[Least]);
}

void printFiles(const Files& files, const std::vector<bench::FileTimes>& times) {
    std::printf("%-36s %8s %8s %8s %8s %8s\n", "warm, us", "bytes", "ours", "least", "straight", "ratio");
    for (std::size_t i = 0; i < files.size(); ++i)
        std::printf("%-36s %8zu %8.1f %8.1f %8.1f %8.2f\n", files[i].filename().c_str(),
                    static_cast<std::size_t>(fs::file_size(files[i])), times[Strict][i].count() * 1e6,
                    times[Least][i].count() * 1e6, times[Straight][i].count() * 1e6,
                    times[Strict][i] / times[Least][i]);
}

/// Packages from one origin.
struct Group {
    const char* title;
    Files files;
};

std::vector<Group> makeGroups(const char* folder, const fs::path& made) {
    if (folder != nullptr)
        return {{"of the folder", packagesIn(folder)}};
    // Runs in a separate process, like everything before the first times, so that nothing is warm in this one.
    bench::inChild([&] {
        bench::writeRealShapes(made);
        return 0;
    });
    return {{"of office programs", packagesIn(OPCMODEL_OFFICE_FILES)}, {"made", packagesIn(made)}};
}

void compare(const std::vector<Group>& groups, int rounds) {
    std::vector<std::vector<bench::FileTimes>> first;
    first.reserve(groups.size());
    for (const Group& group : groups)
        first.push_back(bench::measureFirst(group.files, WORKS, std::min(rounds, 3)));
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const auto& [title, files] = groups[i];
        const auto warm = bench::measure(files, WORKS, rounds);
        bench::printHeading((std::to_string(files.size()) + " packages " + title).c_str());
        printRows("first of a process", first[i]);
        printRows("warm", warm);
        constexpr std::size_t FEW = 20;
        if (files.size() <= FEW)
            printFiles(files, warm);
    }
}

/// The work of several threads in about a second.
struct Rate {
    double filesPerSecond = 0;
    Seconds workPerFile = Seconds::max();
};

/// Lists the files again and again, one file at a time in each thread.
Rate measureRate(const bench::FileWork& work, const Files& files, unsigned threads) {
    using Clock = std::chrono::steady_clock;
    std::atomic<std::size_t> next{0};
    std::vector<Seconds> worked(threads);
    std::vector<std::thread> running;
    running.reserve(threads);
    const auto start = Clock::now();
    for (Seconds& time : worked)
        running.emplace_back([&] {
            time = bench::workTime([&] {
                while (Clock::now() - start < std::chrono::seconds(1))
                    work(files[next++ % files.size()]);
            });
        });
    for (std::thread& thread : running)
        thread.join();
    const Seconds passed = Clock::now() - start;
    const auto count = static_cast<double>(next);
    Seconds sum{0};
    for (const Seconds& time : worked)
        sum += time;
    return {count / passed.count(), sum / count};
}

/// In clock time. The CPU time shows whether the threads hinder each other, even on a busy machine.
void compareThreads(const Files& files, unsigned threads) {
    for (const Side side : {Strict, Least}) {
        Rate one;
        Rate all;
        for (int round = 0; round < 3; ++round)
            for (auto [rate, count] : {std::pair(&one, 1U), std::pair(&all, threads)}) {
                const Rate now = measureRate(WORKS[side], files, count);
                rate->filesPerSecond = std::max(rate->filesPerSecond, now.filesPerSecond);
                rate->workPerFile = std::min(rate->workPerFile, now.workPerFile);
            }
        std::printf(
            "%-6s 1 thread: %6.0f files a second, %5.1f us of work each; %u threads: %6.0f, %5.1f us; "
            "%.2f times the files\n",
            side == Strict ? "ours," : "least,", one.filesPerSecond, one.workPerFile.count() * 1e6, threads,
            all.filesPerSecond, all.workPerFile.count() * 1e6, all.filesPerSecond / one.filesPerSecond);
    }
}

/// Prints the names of the files, and an empty line. For each line that it then reads, it lists all files and prints
/// the CPU time in seconds.
void listPaced(const Files& files) {
    for (const fs::path& file : files)
        std::cout << file.string() << '\n';
    std::cout << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        const Seconds time = bench::workTime([&] {
            for (const fs::path& file : files)
                listStrictly(file);
        });
        std::cout << time.count() << std::endl;
    }
}

} // namespace

int main(int argc, char** argv) try {
    const bool isPaced = argc > 1 && std::strcmp(argv[1], "--paced") == 0;
    const int first = isPaced ? 2 : 1;
    const int rounds = argc > 2 && !isPaced ? std::atoi(argv[2]) : 12;
    const unsigned threads =
        argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : std::thread::hardware_concurrency();

    const opc::test::TemporaryFolder made;
    const std::vector<Group> groups = makeGroups(argc > first ? argv[first] : nullptr, made.path());
    Files all;
    for (const Group& group : groups)
        all.insert(all.end(), group.files.begin(), group.files.end());
    if (all.empty() || rounds < 1 || threads < 1)
        return 1;
    if (isPaced) {
        listPaced(all);
        return 0;
    }
    compare(groups, rounds);
    compareThreads(all, threads);
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
