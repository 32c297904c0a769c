// The core properties part: making its serializer, which compiles five schemas and is paid for each operation
// on a package; reading and writing the document alone; and both operations whole, on a package in memory.

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

CoreProperties everyField() {
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
    properties.setTitle(u"A title");
    properties.setVersion(u"1.0");
    return properties;
}

void MakeSerializer(benchmark::State& state) {
    const XercesGuard guard; // the first of a process pays for Xerces itself
    for (auto _ : state) {
        const CorePropertiesSerializer serializer;
        benchmark::DoNotOptimize(&serializer);
    }
}

void WriteDocument(benchmark::State& state) {
    CorePropertiesSerializer serializer;
    const CoreProperties properties = everyField();
    for (auto _ : state) {
        Bytes document;
        opc::ByteArrayOutAdaptor stream(document);
        serializer.write(properties, stream);
        benchmark::DoNotOptimize(document.data());
    }
}

void ReadDocument(benchmark::State& state) {
    CorePropertiesSerializer serializer;
    Bytes document;
    opc::ByteArrayOutAdaptor target(document);
    serializer.write(everyField(), target);
    for (auto _ : state) {
        CoreProperties properties;
        opc::ByteArrayInAdaptor stream(document);
        serializer.read(stream, properties);
        benchmark::DoNotOptimize(&properties);
    }
}

void CreateInPackage(benchmark::State& state) {
    const CoreProperties properties = everyField();
    for (auto _ : state) {
        opc::physical::MemoryPackage store;
        Package package(store);
        package.open(opc::interfaces::OpenMode::CreateOnly);
        PackageHelper::createOrUpdateCoreProperties(package, properties);
        package.close(false);
    }
}

void GetFromPackage(benchmark::State& state) {
    opc::physical::MemoryPackage store;
    Package package(store);
    package.open(opc::interfaces::OpenMode::CreateOnly);
    PackageHelper::createOrUpdateCoreProperties(package, everyField());
    for (auto _ : state) {
        const CoreProperties properties = PackageHelper::getCoreProperties(package);
        benchmark::DoNotOptimize(&properties);
    }
}

BENCHMARK(MakeSerializer)->Unit(benchmark::kMicrosecond);
BENCHMARK(WriteDocument)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadDocument)->Unit(benchmark::kMicrosecond);
BENCHMARK(CreateInPackage)->Unit(benchmark::kMicrosecond);
BENCHMARK(GetFromPackage)->Unit(benchmark::kMicrosecond);

} // namespace
