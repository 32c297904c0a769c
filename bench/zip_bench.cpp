// One part of 10,000 changes and the archive is saved, against what that can't be done without: a copy of the
// file (written, synced, renamed, its folder synced) and the reading of its directory. `ratio` is the one to
// the other, both taken in the same iterations; the argument is the size of a part in bytes.

#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;
using Seconds = std::chrono::duration<double>;

constexpr int PARTS = 10000;

struct StoredInfo : opc::interfaces::IPhysicalPartInfo {
    opc::interfaces::CompressionType getCompressionType() const override {
        return opc::interfaces::CompressionType::None;
    }
    std::uint64_t getGrowthHint() const override { return 0; }
    void* getExtraInfo(const std::u16string&) const override { return nullptr; }
};

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
    Seconds copying{};
    Seconds reading{};
    Seconds changing{};
    for (auto _ : state) {
        copying += timed([&] { copyFile(path, folder / "copy.zip"); });
        reading += timed([&] { readDirectory(path); });
        const Seconds changed = timed([&] { changeOne(path); });
        changing += changed;
        state.SetIterationTime(changed.count());
    }
    const auto each = [&](Seconds all) {
        return 1000 * all.count() / static_cast<double>(state.iterations());
    };
    state.counters["copy_ms"] = each(copying);
    state.counters["directory_ms"] = each(reading);
    state.counters["ratio"] = changing / (copying + reading);
    fs::remove_all(folder);
}

BENCHMARK(ChangeOneOf10000)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

} // namespace
