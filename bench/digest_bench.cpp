// The speed of the digest of a stream, compared with OpenSSL's own digest over the same bytes in blocks of 64 KiB,
// which come from memory or, if the bytes must be read first, from the same source. Both run in turn in each
// iteration. `ratio` is the ratio of their speeds: 1 means that the stream costs nothing.

#include "WorkTime.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/InputStreamSource.hpp>

#include <benchmark/benchmark.h>
#include <boost/iostreams/stream.hpp>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using bedrock::crypto::DigestAlgorithm;
using bedrock::crypto::DigestEngine;

constexpr std::size_t BlockSize = 64 * 1024;
constexpr std::size_t Size = 64 * 1024 * 1024;

/// A block of bytes; empty at the end.
using NextBlock = std::function<std::string_view()>;

std::vector<unsigned char> digestBlocks(const NextBlock& next, const EVP_MD* digest) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestInit_ex2(context.get(), digest, nullptr);
    for (std::string_view block = next(); !block.empty(); block = next())
        EVP_DigestUpdate(context.get(), block.data(), block.size());
    std::vector<unsigned char> value(static_cast<std::size_t>(EVP_MD_get_size(digest)));
    EVP_DigestFinal_ex(context.get(), value.data(), nullptr);
    return value;
}

/// Compares the engine over a stream with the blocks, by the shortest time of each.
void compare(benchmark::State& state, DigestAlgorithm algorithm, const char* name,
             const std::function<std::vector<unsigned char>(DigestEngine&)>& digestTheStream,
             const std::function<NextBlock()>& startBlocks) {
    const EVP_MD* digest = EVP_get_digestbyname(name);
    const auto engine = bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(algorithm);
    bench::BestTime own;
    bench::BestTime inBlocks;
    for (auto _ : state) {
        std::vector<unsigned char> value;
        state.SetIterationTime(own.take([&] { value = digestTheStream(*engine); }).count());
        inBlocks.take([&] {
            if (digestBlocks(startBlocks(), digest) != value)
                state.SkipWithError("the digests differ");
        });
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{Size});
    state.counters["ratio"] = inBlocks / own;
}

void memoryStream(benchmark::State& state, DigestAlgorithm algorithm, const char* name) {
    const std::string content(Size, 'x');
    std::istringstream stream(content);
    compare(
        state, algorithm, name,
        [&stream](DigestEngine& engine) {
            stream.clear();
            stream.seekg(0);
            return engine.computeDigest(stream);
        },
        [&content] {
            return [rest = std::string_view(content)]() mutable {
                const std::string_view block = rest.substr(0, BlockSize);
                rest.remove_prefix(block.size());
                return block;
            };
        });
}

/// A part's stream as the package gives it to the engine.
void partStream(benchmark::State& state, DigestAlgorithm algorithm, const char* name) {
    const std::vector<unsigned char> bytes(Size, 'x');
    std::vector<unsigned char> block(BlockSize);
    opc::ByteArrayInAdaptor source(bytes);
    compare(
        state, algorithm, name,
        [&source](DigestEngine& engine) {
            source.open();
            boost::iostreams::stream<opc::InputStreamSource> stream{opc::InputStreamSource(source)};
            return engine.computeDigest(stream);
        },
        [&] {
            source.open();
            return [&] {
                const auto count = static_cast<std::size_t>(source.read(block.data(), BlockSize));
                return std::string_view(reinterpret_cast<const char*>(block.data()), count);
            };
        });
}

void fileStream(benchmark::State& state, DigestAlgorithm algorithm, const char* name) {
    const auto path = std::filesystem::temp_directory_path() / "opcmodel-digest-bench";
    std::ofstream(path, std::ios::binary) << std::string(Size, 'x');
    std::vector<char> block(BlockSize);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(nullptr, &std::fclose);
    compare(
        state, algorithm, name,
        [&path](DigestEngine& engine) {
            std::ifstream stream(path, std::ios::binary);
            return engine.computeDigest(stream);
        },
        [&] {
            file.reset(std::fopen(path.c_str(), "rb"));
            std::setbuf(file.get(), nullptr);
            return [&] {
                return std::string_view(block.data(), std::fread(block.data(), 1, BlockSize, file.get()));
            };
        });
    std::filesystem::remove(path);
}

BENCHMARK_CAPTURE(memoryStream, MD5, DigestAlgorithm::MD5, "MD5")->UseManualTime();
BENCHMARK_CAPTURE(memoryStream, SHA1, DigestAlgorithm::SHA1, "SHA1")->UseManualTime();
BENCHMARK_CAPTURE(memoryStream, SHA224, DigestAlgorithm::SHA224, "SHA224")->UseManualTime();
BENCHMARK_CAPTURE(memoryStream, SHA256, DigestAlgorithm::SHA256, "SHA256")->UseManualTime();
BENCHMARK_CAPTURE(memoryStream, SHA384, DigestAlgorithm::SHA384, "SHA384")->UseManualTime();
BENCHMARK_CAPTURE(memoryStream, SHA512, DigestAlgorithm::SHA512, "SHA512")->UseManualTime();
BENCHMARK_CAPTURE(partStream, SHA256, DigestAlgorithm::SHA256, "SHA256")->UseManualTime();
BENCHMARK_CAPTURE(partStream, SHA512, DigestAlgorithm::SHA512, "SHA512")->UseManualTime();
BENCHMARK_CAPTURE(fileStream, SHA256, DigestAlgorithm::SHA256, "SHA256")->UseManualTime();
BENCHMARK_CAPTURE(fileStream, SHA512, DigestAlgorithm::SHA512, "SHA512")->UseManualTime();

} // namespace
