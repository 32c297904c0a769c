// ZIP archives without the model, compared with the least work for the same result. Both run in turn in each
// iteration. `ratio` is the ratio of the shortest CPU times, except for ChangeOneOf10000, where waiting for the disk
// counts too.
//
// - OpenAndRead reads the directory, and each relationships part once; compared with reading the directory, `pread`
// and zlib. The argument is the number of parts, each with a relationships part. `bytes_per_item` is the memory of
// the open package for each item.
// - ReadParts reads parts of the argument's size in bytes, 10 MB together, in pieces of 4 KiB; compared with `pread`
// and zlib, which read each part with one call. Both times include opening.
// - CreateAndSave writes and saves that many parts of 1 KiB; compared with zlib over the same bytes.
// - ChangeOneOf10000 changes one part of 10,000 and saves the archive; compared with copying the file (written,
// synced, renamed, its folder synced) and reading its directory. The argument is the size of a part in bytes.

#include "RawArchive.hpp"
#include "SamplePackages.hpp"
#include "WorkTime.hpp"

#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using opc::interfaces::CompressionType;
using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;
using Seconds = std::chrono::duration<double>;

constexpr int PARTS = 10000;

template <CompressionType COMPRESSION>
struct Info : opc::interfaces::IPhysicalPartInfo {
    CompressionType getCompressionType() const override { return COMPRESSION; }
    std::uint64_t getGrowthHint() const override { return 0; }
    void* getExtraInfo(const std::u16string&) const override { return nullptr; }
};
using StoredInfo = Info<CompressionType::None>;
using DeflatedInfo = Info<CompressionType::Normal>;

std::u16string partName(int number) {
    const std::string name =
        "/content/folder" + std::to_string(number % 100) + "/part" + std::to_string(number) + ".xml";
    return {name.begin(), name.end()};
}

void create(const fs::path& path, std::size_t size) {
    std::mt19937_64 random;
    std::vector<unsigned char> content(size);
    ZipPackage package(path);
    package.open(OpenMode::CreateOnly);
    for (int i = 0; i < PARTS; ++i) {
        for (unsigned char& byte : content)
            byte = static_cast<unsigned char>(random());
        package.createPart(partName(i), u"", StoredInfo())
            ->getOutputStream()
            ->write(content.data(), content.size());
    }
    package.close(false);
}

void sync(const fs::path& path, int flags) {
    const int file = ::open(path.c_str(), flags);
    ::fsync(file);
    ::close(file);
}

void copyFile(const fs::path& from, const fs::path& to) {
    const fs::path temporary = to.string() + ".new";
    fs::copy_file(from, temporary, fs::copy_options::overwrite_existing);
    sync(temporary, O_RDWR);
    fs::rename(temporary, to);
    sync(to.parent_path(), O_RDONLY | O_DIRECTORY);
}

void readDirectory(const fs::path& path) {
    ZipPackage package(path);
    package.open(OpenMode::ReadOnly);
    benchmark::DoNotOptimize(package.getParts().size());
    package.close(true);
}

void changeOne(const fs::path& path) {
    const std::string text = "<changed/>";
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    package.createPart(partName(PARTS / 2), u"", StoredInfo())
        ->getOutputStream()
        ->write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    package.close(false);
}

template <typename Action>
Seconds timed(Action&& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::steady_clock::now() - start;
}

void ChangeOneOf10000(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / "opcmodel_zip_bench";
    fs::create_directory(folder);
    const fs::path path = folder / "large.zip";
    create(path, static_cast<std::size_t>(state.range(0)));
    Seconds copying = Seconds::max();
    Seconds reading = Seconds::max();
    Seconds changing = Seconds::max();
    for (auto _ : state) {
        copying = std::min(copying, timed([&] { copyFile(path, folder / "copy.zip"); }));
        reading = std::min(reading, timed([&] { readDirectory(path); }));
        const Seconds changed = timed([&] { changeOne(path); });
        changing = std::min(changing, changed);
        state.SetIterationTime(changed.count());
    }
    state.counters["copy_ms"] = copying.count() * 1000;
    state.counters["directory_ms"] = reading.count() * 1000;
    state.counters["ratio"] = changing / (copying + reading);
    fs::remove_all(folder);
}

bool isRelationshipsPart(std::u16string_view name) {
    constexpr std::u16string_view END = u".rels";
    return name.size() > END.size() && name.substr(name.size() - END.size()) == END;
}

std::size_t readRelationships(ZipPackage& package) {
    std::vector<unsigned char> buffer(1U << 16);
    std::size_t size = 0;
    for (auto* part : package.getParts()) {
        if (!isRelationshipsPart(part->getName()))
            continue;
        auto* input = part->getInputStream();
        while (!input->isDone())
            size += input->read(buffer.data(), buffer.size());
    }
    return size;
}

std::size_t readRelationshipsRaw(const fs::path& path) {
    bench::RawArchive archive(path);
    std::size_t size = 0;
    for (const auto& item : archive.directory()) {
        if (isRelationshipsPart(std::u16string(item.name.begin(), item.name.end())))
            size += archive.content(item).size();
    }
    return size;
}

void OpenAndRead(benchmark::State& state) {
    const auto parts = static_cast<int>(state.range(0));
    const fs::path path = fs::temp_directory_path() / "opcmodel_zip_bench_read.zip";
    fs::remove(path);
    {
        ZipPackage archive(path);
        bench::createPackage(archive, bench::partContents(parts));
    }
    bench::BestTime reading;
    bench::BestTime raw;
    std::size_t kept = 0;
    for (auto _ : state) {
        ZipPackage package(path);
        const auto time = reading.take([&] {
            const std::size_t before = ::mallinfo2().uordblks;
            package.open(OpenMode::ReadOnly);
            kept = ::mallinfo2().uordblks - before;
            benchmark::DoNotOptimize(readRelationships(package));
        });
        package.close(true);
        state.SetIterationTime(time.count());
        raw.take([&] { benchmark::DoNotOptimize(readRelationshipsRaw(path)); });
    }
    fs::remove(path);
    state.counters["raw_ms"] = raw.milliseconds();
    state.counters["ratio"] = reading / raw;
    state.counters["bytes_per_item"] = static_cast<double>(kept) / (2.0 * parts + 1);
}

void ReadParts(benchmark::State& state) {
    const fs::path path = fs::temp_directory_path() / "opcmodel_zip_bench_parts.zip";
    fs::remove(path);
    const auto size = static_cast<std::size_t>(state.range(0));
    {
        ZipPackage package(path);
        package.open(OpenMode::CreateOnly);
        int number = 0;
        for (std::size_t total = 0; total < 10'000'000; total += size) {
            std::string text;
            while (text.size() < size)
                text += bench::partContent(number++);
            package.createPart(partName(number), u"", DeflatedInfo())
                ->getOutputStream()
                ->write(reinterpret_cast<const unsigned char*>(text.data()), size);
        }
        package.close(false);
    }
    bench::BestTime reading;
    bench::BestTime raw;
    for (auto _ : state) {
        const auto time = reading.take([&] {
            ZipPackage package(path);
            package.open(OpenMode::ReadOnly);
            std::vector<unsigned char> buffer(4096);
            std::uint64_t total = 0;
            for (auto* part : package.getParts()) {
                auto* input = part->getInputStream();
                while (!input->isDone())
                    total += input->read(buffer.data(), buffer.size());
            }
            benchmark::DoNotOptimize(total);
        });
        state.SetIterationTime(time.count());
        raw.take([&] {
            bench::RawArchive archive(path);
            std::size_t total = 0;
            for (const auto& item : archive.directory())
                total += archive.content(item).size();
            benchmark::DoNotOptimize(total);
        });
    }
    fs::remove(path);
    state.counters["raw_ms"] = raw.milliseconds();
    state.counters["ratio"] = reading / raw;
}

void CreateAndSave(benchmark::State& state) {
    const fs::path path = fs::temp_directory_path() / "opcmodel_zip_bench_new.zip";
    std::vector<std::pair<std::u16string, std::string>> parts;
    for (int i = 0; i < static_cast<int>(state.range(0)); ++i)
        parts.emplace_back(partName(i), bench::partContent(i));
    bench::BestTime creating;
    bench::BestTime deflating;
    for (auto _ : state) {
        fs::remove(path);
        const auto time = creating.take([&] {
            ZipPackage package(path);
            package.open(OpenMode::CreateOnly);
            for (const auto& [name, content] : parts)
                package.createPart(name, u"", DeflatedInfo())
                    ->getOutputStream()
                    ->write(reinterpret_cast<const unsigned char*>(content.data()), content.size());
            package.close(false);
        });
        state.SetIterationTime(time.count());
        deflating.take([&] {
            bench::RawDeflater deflater;
            std::size_t size = 0;
            for (const auto& part : parts)
                size += deflater.deflate(part.second);
            benchmark::DoNotOptimize(size);
        });
    }
    fs::remove(path);
    state.counters["zlib_ms"] = deflating.milliseconds();
    state.counters["ratio"] = creating / deflating;
}

BENCHMARK(OpenAndRead)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ReadParts)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(CreateAndSave)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ChangeOneOf10000)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

} // namespace
