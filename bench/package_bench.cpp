// Whole packages in a file: open and list, create and save, change one part and save, each compared with the least
// work for the same result. Both run in turn in each iteration. `ratio` is the ratio of the shortest CPU times. Each
// part has 3 relationships, one of them to an external target with a query, and so has a relationships part. Opened
// packages have 20 content types, as documents have; created ones have one. `KiB_per_part` is the largest growth of
// the process's memory while the package is open. `size` is the compressed size of all contents, compared with
// zlib's.

#include "PeakMemory.hpp"
#include "RawArchive.hpp"
#include "RawListing.hpp"
#include "SamplePackages.hpp"
#include "WorkTime.hpp"

#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <zip.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>

namespace {

using namespace opc::model;
namespace fs = std::filesystem;
using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;

opc::physical::ZipOptions manyItems() {
    opc::physical::ZipOptions options;
    options.maxItems = 1000000;
    return options;
}

/// As many content types as documents have.
constexpr int CONTENT_TYPES = 20;

/// A package with that many parts, made once.
const fs::path& sample(int parts, int contentTypes) {
    static std::map<std::pair<int, int>, fs::path> made;
    auto& path = made[{parts, contentTypes}];
    if (path.empty()) {
        path = fs::temp_directory_path() /
               ("opcmodel_bench_" + std::to_string(parts) + '_' + std::to_string(contentTypes) + ".zip");
        fs::remove(path);
        ZipPackage archive(path, manyItems());
        bench::createPackage(archive, bench::partContents(parts), contentTypes);
    }
    return path;
}

std::size_t countRelationships(const Package& package) {
    std::size_t count = 0;
    for (const Part& part : package.getParts())
        count += part.getRelationships().size();
    return count;
}

void OpenAndList(benchmark::State& state) {
    const auto& path = sample(static_cast<int>(state.range(0)), CONTENT_TYPES);
    bench::BestTime opening;
    bench::BestTime raw;
    malloc_trim(0);
    bench::resetPeakMemory();
    const double before = bench::peakMemoryInMiB();
    for (auto _ : state) {
        const auto time = opening.take([&] {
            ZipPackage archive(path, manyItems());
            Package package(archive);
            package.open(OpenMode::ReadOnly);
            benchmark::DoNotOptimize(countRelationships(package));
        });
        state.SetIterationTime(time.count());
        raw.take([&] { benchmark::DoNotOptimize(bench::listRawPackage(path)); });
    }
    state.counters["ratio"] = opening / raw;
    state.counters["KiB_per_part"] =
        (bench::peakMemoryInMiB() - before) * 1024 / static_cast<double>(state.range(0));
}

/// An archive with only a content types stream.
void OpenEmpty(benchmark::State& state) {
    const fs::path path = fs::temp_directory_path() / "opcmodel_bench_empty.zip";
    fs::remove(path);
    ZipPackage archive(path);
    bench::createPackage(archive, {});
    for (auto _ : state) {
        Package package(archive);
        package.open(OpenMode::ReadOnly);
        package.close(true);
    }
    fs::remove(path);
}

/// Only compresses the same bytes with zlib.
/// @return the number of compressed bytes
std::size_t deflateAll(const std::vector<std::string>& texts) {
    bench::RawDeflater deflater;
    std::size_t size = 0;
    for (const std::string& text : texts)
        size += deflater.deflate(text);
    return size;
}

void CreateAndSave(benchmark::State& state) {
    const int parts = static_cast<int>(state.range(0));
    const fs::path path = fs::temp_directory_path() / "opcmodel_bench_new.zip";
    const std::vector<std::string> contents = bench::partContents(parts);
    std::vector<std::string> texts;
    std::size_t size = 0;
    std::size_t sizeByZlib = 0;
    bench::RawArchive made(sample(parts, 1));
    for (const auto& item : made.directory()) {
        texts.emplace_back(made.content(item));
        size += item.compressedSize;
    }
    bench::BestTime creating;
    bench::BestTime deflating;
    for (auto _ : state) {
        fs::remove(path);
        const auto time = creating.take([&] {
            ZipPackage archive(path);
            bench::createPackage(archive, contents);
        });
        state.SetIterationTime(time.count());
        deflating.take([&] { sizeByZlib = deflateAll(texts); });
    }
    fs::remove(path);
    state.counters["ratio"] = creating / deflating;
    state.counters["size"] = static_cast<double>(size) / static_cast<double>(sizeByZlib);
}

/// Replaces one item with libzip alone.
void replaceByLibzip(zip_t* archive, const std::string& name, const std::string& text) {
    zip_source_t* source = zip_source_buffer(archive, text.data(), text.size(), 0);
    zip_file_replace(archive, static_cast<zip_uint64_t>(zip_name_locate(archive, name.c_str(), 0)), source,
                     0);
    zip_close(archive);
}

void ChangeOneAndSave(benchmark::State& state) {
    const fs::path path = fs::temp_directory_path() / "opcmodel_bench_changed.zip";
    fs::copy_file(sample(static_cast<int>(state.range(0)), CONTENT_TYPES), path,
                  fs::copy_options::overwrite_existing);
    const PartName name = bench::partName(0);
    const std::u16string partName = name.toString();
    const std::string item(partName.begin() + 1, partName.end());
    bench::BestTime changing;
    bench::BestTime byLibzip;
    int change = 0;
    for (auto _ : state) {
        const std::string text = "<changed to='" + std::to_string(++change) + "'/>";
        ZipPackage archive(path);
        Package package(archive);
        package.open(OpenMode::ReadWrite);
        const auto time = changing.take([&] {
            package.getPart(name).getOutputStream().write(reinterpret_cast<const unsigned char*>(text.data()),
                                                          text.size());
            package.close(false);
        });
        state.SetIterationTime(time.count());
        zip_t* raw = zip_open(path.c_str(), 0, nullptr);
        byLibzip.take([&] { replaceByLibzip(raw, item, text); });
    }
    fs::remove(path);
    state.counters["ratio"] = changing / byLibzip;
}

BENCHMARK(OpenAndList)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->MinTime(2) // so that the largest one, too, is opened in memory that the process already has
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(OpenEmpty)->Unit(benchmark::kMillisecond);
BENCHMARK(CreateAndSave)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ChangeOneAndSave)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
