// Signing and verifying, compared within one run by the CPU time of this thread. `sign_ratio` and `verify_ratio`: the
// speed with a large part, divided by the speed of OpenSSL's own digest over the same bytes. `sign_times` and
// `verify_times`: the time of signing or verifying a package of many parts, divided by the time of opening it and
// reading every byte. `verify_raw`: the same, divided by the time of inflating and digesting all parts and parsing
// the signature part once with expat. `peak_MiB` is the peak memory of the process.

#include "PeakMemory.hpp"
#include "RawArchive.hpp"
#include "RawVerification.hpp"
#include "SamplePackages.hpp"
#include "WorkTime.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/MemoryPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace opc::model;
using opc::interfaces::OpenMode;
using opc::physical::MemoryPackage;
using opc::physical::ZipPackage;

constexpr std::size_t BLOCK_SIZE = 64 * 1024;

const bedrock::crypto::RsaKeyPair& keys() {
    static const auto made = bedrock::crypto::generateRsaKeyPair(2048);
    return made;
}

/// Bytes that are made while they are read, so that nobody stores them.
class MadeStream : public opc::interfaces::IPhysicalInputStream {
public:
    explicit MadeStream(std::uint64_t size) : size(size) {}

    void open() override { position = 0; }
    void close() override {}
    bool isDone() const override { return position == size; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = std::min({count, size - position, std::uint64_t(BLOCK_SIZE)});
        std::copy_n(block.begin(), got, buffer);
        position += got;
        return got;
    }

private:
    const std::vector<unsigned char> block = std::vector<unsigned char>(BLOCK_SIZE, 'x');
    std::uint64_t size;
    std::uint64_t position = 0;
};

class MadePart : public opc::interfaces::IPhysicalPart {
public:
    explicit MadePart(std::uint64_t size) : stream(size) {}

    std::u16string getName() const override { return u"/large.bin"; }
    std::u16string getContentType() const override { return u"application/octet-stream"; }
    opc::interfaces::IPhysicalInputStream* getInputStream() override { return &stream; }
    opc::interfaces::IPhysicalOutputStream* getOutputStream() override { return nullptr; }

private:
    MadeStream stream;
};

/// A package with one part of that size.
class LargePackage : public MemoryPackage {
public:
    explicit LargePackage(std::uint64_t size) : MemoryPackage(ContentTypes::InParts), part(size) {}

    std::vector<opc::interfaces::IPhysicalPart*> getParts() override {
        auto parts = MemoryPackage::getParts();
        parts.push_back(&part);
        return parts;
    }

private:
    MadePart part;
};

void digestInBlocks(std::uint64_t size, const EVP_MD* digest) {
    const std::vector<unsigned char> block(BLOCK_SIZE, 'x');
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestInit_ex2(context.get(), digest, nullptr);
    for (std::uint64_t done = 0; done < size; done += BLOCK_SIZE)
        EVP_DigestUpdate(context.get(), block.data(), BLOCK_SIZE);
    unsigned char value[EVP_MAX_MD_SIZE];
    EVP_DigestFinal_ex(context.get(), value, nullptr);
    benchmark::DoNotOptimize(value);
}

/// An open package on a store, with a manager.
struct Opened {
    Opened(opc::interfaces::IPhysicalPackage& store, OpenMode mode) : package(store), manager(package) {
        package.open(mode);
    }

    Package package;
    DigitalSignatureManager manager;
};

void requireGood(benchmark::State& state, const DigitalSignatureVerificationStatus& status) {
    if (!status.isProperlyCodesigned())
        state.SkipWithError("the signature doesn't hold");
}

void LargePart(benchmark::State& state, DigestMethod method, const char* name) {
    const std::uint64_t size = static_cast<std::uint64_t>(state.range(0)) << 20;
    const SignatureParams params(method, SignatureMethod::RSA2048);
    bench::Seconds signing(1e9), verifying(1e9), raw(1e9);
    bench::resetPeakMemory();
    for (auto _ : state) {
        LargePackage store(size);
        store.setPart(u"/small.bin", {}, u"application/octet-stream");
        Opened opened(store, OpenMode::ReadWrite);
        std::optional<DigitalSignature> signature;
        const auto signingNow = bench::workTime(
            [&] { signature.emplace(opened.manager.signPackage(keys().getPrivateKey(), params)); });
        const auto verifyingNow = bench::workTime(
            [&] { requireGood(state, opened.manager.verifySignature(*signature, keys().getPublicKey())); });
        raw = std::min(raw, bench::workTime([&] { digestInBlocks(size, EVP_get_digestbyname(name)); }));
        signing = std::min(signing, signingNow);
        verifying = std::min(verifying, verifyingNow);
        state.SetIterationTime(verifyingNow.count());
        opened.package.close(true);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
    state.counters["sign_ratio"] = raw / signing;
    state.counters["verify_ratio"] = raw / verifying;
    state.counters["peak_MiB"] = bench::peakMemoryInMiB();
}

void readEverything(const Package& package) {
    std::vector<unsigned char> block(BLOCK_SIZE);
    for (const Part& part : package.getParts()) {
        opc::InputStream& stream = part.getInputStream();
        while (!stream.isDone())
            stream.read(block.data(), block.size());
    }
}

bool endsWith(const std::string& name, const std::string& end) {
    return name.size() >= end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
}

/// The least work of a verification: inflates and digests all parts, and parses the signature part.
void digestAndParse(const std::filesystem::path& path, const EVP_MD* digest) {
    bench::RawArchive archive(path);
    bench::RawDigest digestContent(digest);
    for (const auto& item : archive.directory()) {
        const std::string_view content = archive.content(item);
        if (item.name == "_xmlsignatures/sig1.xml")
            bench::parseByExpat(content);
        else if (!endsWith(item.name, ".rels"))
            digestContent(content);
    }
}

/// Verifies, including the loading of the signature. The package is already open.
void ManyParts(benchmark::State& state) {
    const auto path = std::filesystem::temp_directory_path() / "opcmodel_bench_signed.zip";
    const std::unique_ptr<const void, void (*)(const void*)> cleanUp(&path, [](const void* made) {
        std::filesystem::remove(*static_cast<const std::filesystem::path*>(made));
    });
    std::filesystem::remove(path);
    ZipPackage archive(path);
    bench::createPackage(archive, bench::partContents(static_cast<int>(state.range(0))));
    bench::Seconds reading(1e9), verifying(1e9), raw(1e9), signing(0);
    {
        Opened opened(archive, OpenMode::ReadWrite);
        const auto& key = keys().getPrivateKey();
        signing = bench::workTime([&] { opened.manager.signPackage(key, SignatureParams()); });
        opened.package.close(false);
    }
    bench::resetPeakMemory();
    for (auto _ : state) {
        reading = std::min(reading, bench::workTime([&] {
                               Package package(archive);
                               package.open(OpenMode::ReadOnly);
                               readEverything(package);
                               package.close(true);
                           }));
        Opened opened(archive, OpenMode::ReadOnly);
        const auto verifyingNow = bench::workTime([&] {
            requireGood(state, opened.manager.verifySignature(opened.manager.getSignature(u"sig1"),
                                                              keys().getPublicKey()));
        });
        verifying = std::min(verifying, verifyingNow);
        raw = std::min(raw, bench::workTime([&] { digestAndParse(path, EVP_sha512()); }));
        state.SetIterationTime(verifyingNow.count());
        opened.package.close(true);
    }
    state.counters["verify_raw"] = verifying / raw;
    state.counters["verify_times"] = verifying / reading;
    state.counters["sign_times"] = signing / reading;
    state.counters["peak_MiB"] = bench::peakMemoryInMiB();
}

/// Loads and verifies signatures of one part each.
void ManySignatures(benchmark::State& state) {
    MemoryPackage store;
    bench::createPackage(store, bench::partContents(1));
    const PartName name(u"/content/folder0/part0.xml");
    {
        Opened opened(store, OpenMode::ReadWrite);
        for (std::int64_t i = 0; i < state.range(0); ++i)
            opened.manager.sign({name}, {}, keys().getPrivateKey(), keys().getPublicKey(), SignatureParams());
        opened.package.close(false);
    }
    bedrock::codesigning_verifier::FingerprintStore anyKey;
    anyKey.setSkippingVerification(true);
    for (auto _ : state) {
        Opened opened(store, OpenMode::ReadOnly);
        requireGood(state, opened.manager.verifyAllSignatures(anyKey, {}, {}));
        opened.package.close(true);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// One source with that many relationships of one type, each with its own selector: signs and saves the package,
/// opens it again and verifies it.
void ManyRelationships(benchmark::State& state) {
    bench::resetPeakMemory();
    for (auto _ : state) {
        MemoryPackage store;
        bench::createPackage(store, bench::partContents(1));
        {
            Opened opened(store, OpenMode::ReadWrite);
            Part source = opened.package.getPart(PartName(u"/content/folder0/part0.xml"));
            for (std::int64_t i = 0; i < state.range(0); ++i)
                source.createExternalRelationship(u"http://example.com/relationships/many",
                                                  u"http://example.com/target");
            opened.manager.signPackage(keys().getPrivateKey(), SignatureParams());
            opened.package.close(false);
        }
        Opened opened(store, OpenMode::ReadOnly);
        requireGood(state, opened.manager.verifySignature(opened.manager.getSignature(u"sig1"),
                                                          keys().getPublicKey()));
        opened.package.close(true);
    }
    state.counters["peak_MiB"] = bench::peakMemoryInMiB();
}

BENCHMARK_CAPTURE(LargePart, SHA256, DigestMethod::SHA256, "SHA256")
    ->Arg(256)
    ->Arg(1024)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LargePart, SHA512, DigestMethod::SHA512, "SHA512")
    ->Arg(256)
    ->Arg(1024)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ManyParts)->Arg(1000)->Arg(10000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ManySignatures)->Arg(100)->Arg(200)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(ManyRelationships)->Arg(300)->Arg(2000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
