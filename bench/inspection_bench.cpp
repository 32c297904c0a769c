// Inspecting packages, compared with listing them and inflating all their items once.
//
//   inspection_bench [FOLDER [ROUNDS]]    ratios
//   inspection_bench --paced [FOLDER]     inspects all files once for each line that it reads: see python_listing.py
//
// Without a folder it uses the documents of office programs among the tests, and packages that it makes in such shapes.

#include "Child.hpp"
#include "FileTimes.hpp"
#include "RealShapes.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/inspection/Inspection.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/Part.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace opc;
using Files = std::vector<fs::path>;

std::uint64_t readAll(InputStream& stream) {
    std::array<unsigned char, 65536> buffer{};
    std::uint64_t size = 0;
    stream.open();
    while (!stream.isDone())
        size += stream.read(buffer.data(), buffer.size());
    stream.close();
    return size;
}

/// Opens and lists as `opctool ls` does, and inflates each part.
std::uint64_t listAndInflate(const fs::path& path) {
    physical::ZipOptions options;
    options.lenient = true;
    physical::ZipPackage archive(path, options);
    physical::LenientPackage lenient(archive);
    model::Package package(lenient);
    package.open(interfaces::OpenMode::ReadOnly);
    std::uint64_t size = 0;
    for (const model::Part& part : package.getParts()) {
        size += part.getName().toString().size() + part.getContentType().toString().size();
        size += readAll(part.getInputStream());
    }
    return size;
}

std::uint64_t inspect(const fs::path& path, unsigned profiles) {
    inspection::InspectionOptions options;
    options.profiles = profiles;
    options.fileName = path.filename().string();
    return inspection::inspect(inspection::Archive(path), options).findings.size();
}

enum Side : std::size_t { Listing, Standard, Everything };
const std::vector<bench::FileWork> WORKS{
    listAndInflate, [](const fs::path& path) { inspect(path, inspection::OPC); },
    [](const fs::path& path) { inspect(path, inspection::EVERY_PROFILE); }};

Files packagesIn(const fs::path& folder) {
    return bench::filesFor(folder, listAndInflate);
}

Files madePackages(const fs::path& folder) {
    bench::inChild([&] {
        bench::writeRealShapes(folder);
        return 0;
    });
    Files files = packagesIn(folder);
    const Files office = packagesIn(OPCMODEL_OFFICE_FILES);
    files.insert(files.end(), office.begin(), office.end());
    return files;
}

void compare(const Files& files, int rounds) {
    const std::vector<bench::FileTimes> times = bench::measure(files, WORKS, rounds);
    bench::printHeading((std::to_string(files.size()) + " packages, beside listing and inflating").c_str());
    bench::printRatios("the profile opc", times[Standard], times[Listing]);
    bench::printRatios("all profiles", times[Everything], times[Listing]);
}

/// Prints the names of the files, and an empty line. For each line that it then reads, it inspects all files and prints
/// the CPU time in seconds.
void inspectPaced(const Files& files) {
    for (const fs::path& file : files)
        std::cout << file.string() << '\n';
    std::cout << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        const bench::Seconds time = bench::workTime([&] {
            for (const fs::path& file : files)
                WORKS[Standard](file);
        });
        std::cout << time.count() << std::endl;
    }
}

} // namespace

int main(int argc, char** argv) try {
    const bool isPaced = argc > 1 && std::strcmp(argv[1], "--paced") == 0;
    const int first = isPaced ? 2 : 1;
    const int rounds = argc > 2 && !isPaced ? std::atoi(argv[2]) : 5;
    const test::TemporaryFolder made;
    const Files files = argc > first ? packagesIn(argv[first]) : madePackages(made.path());
    if (files.empty() || rounds < 1)
        return 1;
    if (isPaced)
        inspectPaced(files);
    else
        compare(files, rounds);
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
