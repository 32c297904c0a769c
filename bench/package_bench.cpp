// Whole packages: open and list, create and save, change one part and save. Each part has 3 relationships,
// and so a relationships part; the package is a ZIP archive in a file. `peak_MiB` is the peak memory of the
// process.

#include "PeakMemory.hpp"

#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <string>

namespace {

using namespace opc::model;
using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;

std::u16string numbered(const std::u16string& start, int number, const std::u16string& end) {
    const std::string digits = std::to_string(number);
    return start + std::u16string(digits.begin(), digits.end()) + end;
}

void write(const Part& part, const std::string& text) {
    part.getOutputStream().write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

void create(const std::filesystem::path& path, int parts) {
    ZipPackage archive(path);
    Package package(archive);
    package.open(OpenMode::CreateOnly);
    const ContentType type(u"application/xml");
    for (int i = 0; i < parts; ++i) {
        Part part = package.createPart(
            PartName(numbered(u"/content/folder", i % 100, numbered(u"/part", i, u".xml"))), type,
            StandardPartInfo());
        write(part, "<content>" + std::string(1000, static_cast<char>('a' + i % 26)) + "</content>");
        part.createInternalRelationship(u"http://example.com/relationships/next", URI(u"next.xml"));
        part.createInternalRelationship(u"http://example.com/relationships/top", URI(u"/top.xml"));
        part.createExternalRelationship(u"http://example.com/relationships/link",
                                        u"http://example.com/target");
    }
    package.close(false);
}

/// A package with that many parts, made once.
const std::filesystem::path& sample(int parts) {
    static std::map<int, std::filesystem::path> made;
    auto& path = made[parts];
    if (path.empty()) {
        path = std::filesystem::temp_directory_path() / ("opcmodel_bench_" + std::to_string(parts) + ".zip");
        create(path, parts);
    }
    return path;
}

void report(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["peak_MiB"] = bench::peakMemoryInMiB();
}

void OpenAndList(benchmark::State& state) {
    const auto path = sample(static_cast<int>(state.range(0)));
    bench::resetPeakMemory();
    for (auto _ : state) {
        ZipPackage archive(path);
        Package package(archive);
        package.open(OpenMode::ReadOnly);
        std::size_t count = 0;
        for (const Part& part : package.getParts())
            count += part.getRelationships().size();
        benchmark::DoNotOptimize(count);
    }
    report(state);
}

void CreateAndSave(benchmark::State& state) {
    const auto path = std::filesystem::temp_directory_path() / "opcmodel_bench_new.zip";
    bench::resetPeakMemory();
    for (auto _ : state)
        create(path, static_cast<int>(state.range(0)));
    std::filesystem::remove(path);
    report(state);
}

void ChangeOneAndSave(benchmark::State& state) {
    const auto path = std::filesystem::temp_directory_path() / "opcmodel_bench_changed.zip";
    std::filesystem::copy_file(sample(static_cast<int>(state.range(0))), path,
                               std::filesystem::copy_options::overwrite_existing);
    bench::resetPeakMemory();
    for (auto _ : state) {
        ZipPackage archive(path);
        Package package(archive);
        package.open(OpenMode::ReadWrite);
        write(package.getPart(PartName(u"/content/folder0/part0.xml")), "<changed/>");
        package.close(false);
    }
    std::filesystem::remove(path);
    report(state);
}

BENCHMARK(OpenAndList)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(CreateAndSave)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(ChangeOneAndSave)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
