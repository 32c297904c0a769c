#include "PhysicalSupport.hpp"
#include "RawZip.hpp"

#include <opc/core/Text.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <cerrno>

namespace {

using namespace opc::test;
using opc::physical::ZipPackage;

struct NameCase {
    const char* item;
    const char16_t* part; ///< null: the item is ignored
    const char* reason;
};

const NameCase NAMES[] = {
    {"a.xml", u"/a.xml", ""},
    {"_rels/.rels", u"/_rels/.rels", ""},
    {"a/B c.xml", u"/a/B%20c.xml", ""},
    {"a\\b\\c.xml", u"/a/b/c.xml", ""},
    {"t/[1] {x}|^`\"<>#?.png", u"/t/%5B1%5D%20%7Bx%7D%7C%5E%60%22%3C%3E%23%3F.png", ""},
    {"caf\xC3\xA9.xml", u"/caf%C3%A9.xml", ""},
    {"\xE6\x97\xA5.xml", u"/%E6%97%A5.xml", ""},
    {"a!$&'()*+,;=:@-_~b", u"/a!$&'()*+,;=:@-_~b", ""},
    {"a%20b", u"/a%20b", ""},
    {"a%255Bb", u"/a%255Bb", ""},
    {"tab\tname", u"/tab%09name", ""},
    {"a/..b", u"/a/..b", ""},
    {"c:a.xml", u"/c:a.xml", ""},
    {"ab:/c.xml", u"/ab:/c.xml", ""},
    {"[trash]", u"/%5Btrash%5D", ""},
    {"a/[content_types].xml", u"/a/%5Bcontent_types%5D.xml", ""},
    {"a/[01].piece", u"/a/%5B01%5D.piece", ""},
    {"folder/", nullptr, "a folder"},
    {"folder\\", nullptr, "a folder"},
    {"[Trash]/0000.dat", nullptr, "a trash item"},
    {"__MACOSX/._a.xml", nullptr, "metadata of the system that wrote the archive"},
    {"a//b", nullptr, "no part name: an empty segment"},
    {"a./b", nullptr, "no part name: a segment that ends in a dot"},
    {"a/./b", nullptr, "no part name: a segment that ends in a dot"},
    {"a%2fb", nullptr, "no part name: a percent-encoded slash or backslash"},
    {"a%5Cb", nullptr, "no part name: a percent-encoded slash or backslash"},
    {"a%41", nullptr, "no part name: a percent-encoded character that needs no encoding"},
    {"a%7e", nullptr, "no part name: a percent-encoded character that needs no encoding"},
    {"100%", nullptr, "no part name: a percent sign without two hexadecimal digits"},
    {"a%2", nullptr, "no part name: a percent sign without two hexadecimal digits"},
    {"a%zz", nullptr, "no part name: a percent sign without two hexadecimal digits"},
    {"a/[0].piece", nullptr, "a piece of an incomplete sequence"},
};

TEST(ZipItemNames, becomePartsOrAreIgnoredWithAReason) {
    for (const NameCase& c : NAMES) {
        ZipPackage package(makeZip({stored(c.item, "content")}));
        package.open(OpenMode::ReadOnly);
        const auto parts = package.getParts();
        if (c.part) {
            ASSERT_EQ(parts.size(), 1U) << c.item;
            EXPECT_EQ(parts[0]->getName(), c.part) << c.item;
            EXPECT_EQ(content(*parts[0]), "content") << c.item;
            EXPECT_TRUE(package.ignoredItems().empty()) << c.item;
        } else {
            EXPECT_TRUE(parts.empty()) << c.item;
            ASSERT_EQ(package.ignoredItems().size(), 1U) << c.item;
            EXPECT_EQ(package.ignoredItems()[0].name, c.item);
            EXPECT_EQ(package.ignoredItems()[0].reason, c.reason) << c.item;
        }
    }
}

TEST(ZipItemNames, areReadInTheEncodingThatTheyAreIn) {
    // é in code page 437, then in UTF-8 with the flag that says so.
    RawItem flagged = stored("\xC3\xA9.u", "");
    flagged.flags = 0x800;
    ZipPackage package(makeZip({stored("\x82.c", ""), flagged}));
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(package), u"/%C3%A9.c /%C3%A9.u ");
}

TEST(ZipItemNames, mayNotClash) {
    const std::vector<std::pair<std::string, std::string>> clashes = {
        {"a.xml", "a.xml"},
        {"a.xml", "A.XML"},
        {"a/b", "a\\b"},
        {"a b", "a%20b"},
        {"[Content_Types].xml", "[content_types].xml"},
        {"a/[0].last.piece", "a"},
        {"a/[0].piece", "A/[0].last.piece"},
    };
    for (const auto& [first, second] : clashes) {
        ZipPackage package(makeZip({stored(first, ""), stored(second, "")}));
        EXPECT_TRUE(fails(EBADMSG, "archive in memory: ", [&] { package.open(OpenMode::ReadOnly); }))
            << first << ", " << second;
    }
}

TEST(ZipItemNames, ofNewPartsMustBePartNames) {
    ZipPackage package(Bytes{});
    package.open(OpenMode::CreateOnly);
    for (const char16_t* name : {u"", u"/", u"a", u"/a/", u"/a//b", u"/a.", u"/a b", u"/\u00e9", u"/a%2Fb",
                                 u"/[Content_Types].xml", u"/a/[0].piece", u"/C:/a"}) {
        EXPECT_TRUE(fails(EINVAL, "no part name: ", [&] { create(package, name, ""); }))
            << opc::toUDEString(name);
    }
    EXPECT_TRUE(package.getParts().empty());
}

TEST(ZipItemNames, ofPiecesAreJoinedAndWrittenBackWhole) {
    const std::vector<RawItem> items = {
        stored("b/[1].piece", "two, "),           stored("[Content_Types].xml/[0].last.piece", "types"),
        oddlyDeflated("b/[2].LAST.piece", "end"), stored("a", "alpha"),
        oddlyDeflated("b/[0].piece", "one, "),
    };
    ZipPackage package(makeZip(items));
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(names(package), u"/a /b ");
    EXPECT_EQ(content(*find(package, u"/b")), "one, two, end");
    EXPECT_EQ(rest(*package.getContentTypeInputStream()), "types");
    create(package, u"/a", "changed");
    package.close(false);
    EXPECT_EQ(readZip(package.bytes()).size(), items.size());

    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "whole");
    package.close(false);
    const auto after = readZip(package.bytes());
    EXPECT_EQ(after.size(), 3U);
    EXPECT_EQ(itemOf(after, "b").size, 5U);
    EXPECT_EQ(itemOf(after, "[Content_Types].xml/[0].last.piece").data, "types");
}

} // namespace
