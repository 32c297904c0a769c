// Writes one large part into a ZIP package and reads it again, and prints the times and the largest memory of the
// process.
//
//   large_part PATH [MEBIBYTES [stored]]     default: 2048, deflated

#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <sys/resource.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using opc::interfaces::CompressionType;
using opc::interfaces::OpenMode;

struct PartInfo : opc::interfaces::IPhysicalPartInfo {
    explicit PartInfo(CompressionType compression) : compression(compression) {}
    CompressionType getCompressionType() const override { return compression; }
    std::uint64_t getGrowthHint() const override { return 0; }
    void* getExtraInfo(const std::u16string&) const override { return nullptr; }

    CompressionType compression;
};

/// Bytes that compress to about a half, and differ between blocks.
void fill(std::vector<unsigned char>& block, std::uint64_t seed) {
    for (unsigned char& byte : block) {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        byte = static_cast<unsigned char>('a' + (seed >> 60));
    }
}

void write(opc::physical::ZipPackage& package, std::uint64_t blocks, CompressionType type) {
    package.open(OpenMode::CreateOnly);
    auto* output =
        package.createPart(u"/large.bin", u"application/octet-stream", PartInfo(type))->getOutputStream();
    std::vector<unsigned char> block(1U << 20);
    for (std::uint64_t i = 0; i < blocks; ++i) {
        fill(block, i);
        output->write(block.data(), block.size());
    }
    package.close(false);
}

void read(opc::physical::ZipPackage& package, std::uint64_t blocks) {
    package.open(OpenMode::ReadOnly);
    auto* input = package.getParts().front()->getInputStream();
    std::vector<unsigned char> expected(1U << 20);
    std::vector<unsigned char> got(expected.size());
    for (std::uint64_t i = 0; i < blocks; ++i) {
        fill(expected, i);
        for (std::size_t filled = 0; filled < got.size();)
            filled += input->read(got.data() + filled, got.size() - filled);
        if (got != expected)
            throw std::runtime_error("block " + std::to_string(i) + " differs");
    }
    package.close(true);
}

template <typename Action>
void measure(const char* what, Action&& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    std::cout << what << ": " << time.count() << " s, peak " << usage.ru_maxrss / 1024 << " MiB\n";
}

} // namespace

int main(int argc, char** argv) try {
    if (argc < 2) {
        std::cerr << "usage: large_part PATH [MEBIBYTES [stored]]\n";
        return 2;
    }
    const std::uint64_t blocks = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 2048;
    const CompressionType type =
        argc > 3 && argv[3] == std::string("stored") ? CompressionType::None : CompressionType::SuperFast;
    opc::physical::ZipPackage package{std::filesystem::path(argv[1])};
    measure("write and save", [&] { write(package, blocks, type); });
    measure("read and compare", [&] { read(package, blocks); });
    return 0;
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 3;
}
