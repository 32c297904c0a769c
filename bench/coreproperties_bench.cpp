// The core properties part: reading and writing only the document, and both whole operations on a package in memory.
// `plain` properties are in printable ASCII, and need no Xerces. `other` properties have a title that isn't: they pay
// for starting Xerces, if nothing else in the process uses it, and for compiling five schemas.

#include "coreproperties/CorePropertiesSerializer.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace opc::model;
using Bytes = std::vector<unsigned char>;

CoreProperties everyField(const std::u16string& title) {
    CoreProperties properties;
    properties.setCategory(u"Letter");
    properties.setContentStatus(u"Draft");
    properties.setCreated(opc::convertStringToTime(u"2024-02-29T13:45:59Z"));
    properties.setCreator(u"Somebody");
    properties.setDescription(std::u16string(500, u'd'));
    properties.setIdentifier(u"urn:uuid:0");
    properties.setKeywords({{u"one", u"en"}, {u"two", u"en"}, {u"three", u""}});
    properties.setLanguage(u"en-GB");
    properties.setLastModifiedBy(u"Somebody else");
    properties.setLastPrinted(opc::convertStringToTime(u"2024-03-01T13:45:59Z"));
    properties.setModified(opc::convertStringToTime(u"2024-03-02T13:45:59Z"));
    properties.setRevision(u"17");
    properties.setSubject(u"A subject");
    properties.setTitle(title);
    properties.setVersion(u"1.0");
    return properties;
}

constexpr char16_t PLAIN[] = u"A title";
constexpr char16_t OTHER[] = u"A\rtitle";

void WriteDocument(benchmark::State& state, const char16_t* title) {
    CorePropertiesSerializer serializer;
    const CoreProperties properties = everyField(title);
    for (auto _ : state) {
        const std::string document = serializer.write(properties);
        benchmark::DoNotOptimize(document.data());
    }
}

void ReadDocument(benchmark::State& state, const char16_t* title) {
    CorePropertiesSerializer serializer;
    const std::string composed = serializer.write(everyField(title));
    const Bytes document(composed.begin(), composed.end());
    for (auto _ : state) {
        CoreProperties properties;
        opc::ByteArrayInAdaptor stream(document);
        serializer.read(stream, properties);
        benchmark::DoNotOptimize(&properties);
    }
}

void CreateInPackage(benchmark::State& state, const char16_t* title) {
    const CoreProperties properties = everyField(title);
    for (auto _ : state) {
        opc::physical::MemoryPackage store;
        Package package(store);
        package.open(opc::interfaces::OpenMode::CreateOnly);
        PackageHelper::createOrUpdateCoreProperties(package, properties);
        package.close(false);
    }
}

/// Including opening the package.
void GetFromPackage(benchmark::State& state, const char16_t* title) {
    opc::physical::MemoryPackage store;
    {
        Package package(store);
        package.open(opc::interfaces::OpenMode::CreateOnly);
        PackageHelper::createOrUpdateCoreProperties(package, everyField(title));
        package.close(false);
    }
    for (auto _ : state) {
        Package package(store);
        package.open(opc::interfaces::OpenMode::ReadOnly);
        const CoreProperties properties = PackageHelper::getCoreProperties(package);
        benchmark::DoNotOptimize(&properties);
        package.close(true);
    }
}

BENCHMARK_CAPTURE(WriteDocument, plain, PLAIN)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(WriteDocument, other, OTHER)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReadDocument, plain, PLAIN)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReadDocument, other, OTHER)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CreateInPackage, plain, PLAIN)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CreateInPackage, other, OTHER)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(GetFromPackage, plain, PLAIN)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(GetFromPackage, other, OTHER)->Unit(benchmark::kMicrosecond);

} // namespace
