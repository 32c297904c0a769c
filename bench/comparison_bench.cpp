// Comparing two packages of which one part differs, beside opening and listing both as `opctool ls` does.
//
//   comparison_bench [PARTS [ROUNDS]]

#include "SamplePackages.hpp"
#include "WorkTime.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/inspection/Comparison.hpp>
#include <opc/inspection/ContentHash.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/Part.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;
using namespace opc;

std::size_t list(const fs::path& path) {
    physical::ZipOptions options;
    options.lenient = true;
    physical::ZipPackage archive(path, options);
    physical::LenientPackage lenient(archive);
    model::Package package(lenient);
    package.open(interfaces::OpenMode::ReadOnly);
    std::size_t size = 0;
    for (const model::Part& part : package.getParts())
        size += part.getName().toString().size() + part.getContentType().toString().size() +
                part.getRelationships().size();
    return size;
}

void compareBoth(const fs::path& before, const fs::path& now) {
    const inspection::Archive left(before);
    const inspection::Archive right(now);
    const inspection::Comparison comparison = inspection::compare(left, right);
    if (comparison.parts.size() != 1 || inspection::compareText(comparison.parts.front()).hunks.empty())
        throw std::runtime_error("one part should differ");
}

void write(const fs::path& path, const std::vector<std::string>& contents) {
    physical::ZipPackage store(path);
    bench::createPackage(store, contents);
}

} // namespace

int main(int argc, char** argv) try {
    const int parts = argc > 1 ? std::atoi(argv[1]) : 10'000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    const test::TemporaryFolder folder;
    const fs::path before = folder.path() / "before.zip";
    const fs::path now = folder.path() / "now.zip";
    std::vector<std::string> contents = bench::partContents(parts);
    write(before, contents);
    std::string& changed = contents.at(contents.size() / 2);
    changed.insert(changed.rfind('<'), "<changed/>");
    write(now, contents);
    bench::BestTime listing;
    bench::BestTime comparing;
    bench::BestTime hashing;
    for (int round = 0; round < rounds; ++round) {
        listing.take([&] { list(before), list(now); });
        comparing.take([&] { compareBoth(before, now); });
        hashing.take([&] { inspection::hashContent(inspection::Archive(before)); });
    }
    std::printf(
        "%d parts: listing both %.1f ms; comparing %.1f ms, %.2f times as long; hashing one %.1f ms\n", parts,
        listing.milliseconds(), comparing.milliseconds(), comparing / listing, hashing.milliseconds());
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
