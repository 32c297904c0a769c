#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

namespace {

using namespace opc::test;

class Zip64 : public FileTest {};

TEST_F(Zip64, numbersAreReadAndStayWhereTheyStood) {
    RawItem large = oddlyDeflated("large", "said to be large");
    large.zip64 = true;
    large.extra = std::string("\x99\x99\x02\0ab", 6);
    RawItem alsoLarge = stored("also-large", "content");
    alsoLarge.zip64 = true;
    writeFile(path,
              makeZip({stored("gone", "gone"), large, alsoLarge, stored("small", "small")}, "comment", true));
    ASSERT_TRUE(othersAccept(path));

    for (int round = 0; round < 2; ++round) {
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        EXPECT_EQ(content(*find(package, u"/large")), "said to be large");
        EXPECT_EQ(content(*find(package, u"/also-large")), "content");
        if (round == 0)
            package.deletePart(u"/gone");
        create(package, u"/new", "new");
        package.close(false);
        EXPECT_TRUE(othersAccept(path));
    }
    const auto items = readZip(readFile(path));
    ASSERT_EQ(items.size(), 4U);
    for (const char* name : {"large", "also-large"}) {
        EXPECT_EQ(itemOf(items, name).size, 0xFFFFFFFF) << "as in its local header";
        EXPECT_EQ(itemOf(items, name).extra.substr(0, 4), std::string("\1\0\x10\0", 4)) << "two sizes";
    }
    EXPECT_EQ(itemOf(items, "large").extra.substr(20), large.extra);
}

TEST_F(Zip64, recordsAreWrittenForMoreItemsThanTheOldOnesCanCount) {
    constexpr std::size_t COUNT = 65536;
    ZipPackage package(path);
    package.open(OpenMode::CreateOnly);
    for (std::size_t i = 0; i < COUNT; ++i) {
        const std::string name = "/" + std::to_string(i);
        create(package, {name.begin(), name.end()}, name);
    }
    package.close(false);
    EXPECT_TRUE(othersAccept(path));

    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(package.getParts().size(), COUNT);
    EXPECT_EQ(content(*find(package, u"/65535")), "/65535");
    package.deletePart(u"/0");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getParts().size(), COUNT - 1);
    EXPECT_NE(readFile<std::string>(path).rfind("PK\x06\x06"), std::string::npos)
        << "65,535 in the old record means that the number is elsewhere";
}

} // namespace
