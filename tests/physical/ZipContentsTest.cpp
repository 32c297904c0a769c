#include "PhysicalSupport.hpp"
#include "RawZip.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <map>
#include <random>

namespace {

using namespace opc::test;
using opc::interfaces::CompressionType;
using opc::physical::ZipOptions;
using opc::physical::ZipPackage;

/// Text of few words, which compresses as XML does.
std::string prose(std::size_t size) {
    static const char* const WORDS[] = {"<part ", "name='", "first",   "second",
                                        "42",     "' />\n", "</list>", "<list>"};
    std::minstd_rand random(static_cast<unsigned>(size) + 1);
    std::string text;
    while (text.size() < size)
        text += WORDS[random() / 8 % 8] + std::to_string(random() % 100);
    text.resize(size);
    return text;
}

std::string noise(std::size_t size) {
    std::mt19937 random(7);
    std::string text(size, '\0');
    std::generate(text.begin(), text.end(), [&random] { return static_cast<char>(random()); });
    return text;
}

/// Around each size where a content begins to take another way.
const std::size_t SIZES[] = {0,     1,     10,     700,    1536,   1537,    20000,   65535,
                             65536, 65537, 262000, 262144, 300000, 1048575, 1048576, 1048577};

TEST(ZipContents, ofEverySizeAreReadAsTheyWereWritten) {
    const TemporaryFolder folder;
    std::map<std::u16string, std::string> contents;
    const auto write = [&](ZipPackage& package) {
        package.open(OpenMode::CreateOnly);
        for (const auto type : {CompressionType::None, CompressionType::Normal, CompressionType::Maximum,
                                CompressionType::Fast, CompressionType::SuperFast}) {
            for (const std::size_t size : SIZES) {
                for (const std::string& text : {prose(size), noise(size)}) {
                    const std::string name = "/" + std::to_string(contents.size());
                    create(package, {name.begin(), name.end()}, text, PartInfo(type));
                    contents[{name.begin(), name.end()}] = text;
                }
            }
        }
        package.close(false);
    };
    ZipOptions options;
    options.deterministic = true;
    options.memoryForWrittenParts = 64ULL << 20;
    ZipPackage inMemory(Bytes{}, options);
    write(inMemory);
    const auto expected = std::exchange(contents, {});
    options.memoryForWrittenParts = 0;
    ZipPackage inFile(folder / "a.zip", options);
    write(inFile);
    EXPECT_TRUE(contents == expected);
    EXPECT_TRUE(readFile(folder / "a.zip") == inMemory.bytes())
        << "it doesn't matter where parts lay meanwhile";
    EXPECT_TRUE(othersAccept(folder / "a.zip"));
    for (ZipPackage* package : {&inMemory, &inFile}) {
        package->open(OpenMode::ReadOnly);
        for (auto* part : package->getParts())
            EXPECT_TRUE(content(*part) == expected.at(part->getName()))
                << std::string(part->getName().begin(), part->getName().end());
        package->close(true);
    }
}

} // namespace
