#include "PhysicalSupport.hpp"
#include "RawZip.hpp"
#include "support/Texts.hpp"

#include <opc/core/Text.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <cerrno>

namespace {

using namespace opc::test;
using opc::physical::ZipPackage;

TEST(ZipItemNames, becomeNamesOfParts) {
    const std::string names[] = {
        // kept
        "a.xml | /a.xml", "_rels/.rels | /_rels/.rels", "a!$&'()*+,;=:@-_~b | /a!$&'()*+,;=:@-_~b",
        "a%20b | /a%20b", "a%255Bb | /a%255Bb", "a/..b | /a/..b", "c:a.xml | /c:a.xml",
        "ab:/c.xml | /ab:/c.xml",
        // converted
        "a/B c.xml | /a/B%20c.xml", "a\\b\\c.xml | /a/b/c.xml",
        "t/[1] {x}|^`\"<>#?.png | /t/%5B1%5D%20%7Bx%7D%7C%5E%60%22%3C%3E%23%3F.png",
        "caf\xC3\xA9.xml | /caf%C3%A9.xml", "\xE6\x97\xA5.xml | /%E6%97%A5.xml", "tab\tname | /tab%09name",
        "[trash] | /%5Btrash%5D", "a/[content_types].xml | /a/%5Bcontent_types%5D.xml",
        "a/[01].piece | /a/%5B01%5D.piece",
        // in the letter case of the standard
        "_Rels/.RELS | /_rels/.rels", "a/_RELS/B.xml.Rels | /a/_rels/B.xml.rels",
        "A\\_Rels\\b.rels | /A/_rels/b.rels", "a_RELS/b.RELS | /a_RELS/b.RELS",
        "_RELS/a/b.RELS | /_RELS/a/b.RELS", "_RELS/b.xml | /_RELS/b.xml"};
    for (const std::string& row : names) {
        const auto [item, name] = columns<2>(row);
        ZipPackage package(makeZip({stored(item, "content")}));
        package.open(OpenMode::ReadOnly);
        const auto parts = package.getParts();
        ASSERT_EQ(parts.size(), 1U) << row;
        EXPECT_EQ(opc::toUDEString(parts[0]->getName()), name);
        EXPECT_EQ(content(*parts[0]), "content") << row;
        EXPECT_TRUE(package.ignoredItems().empty()) << row;
    }
}

TEST(ZipItemNames, ofOtherItemsAreIgnoredWithAReason) {
    const std::pair<const char*, std::vector<const char*>> ignored[] = {
        {"a folder", {"folder/", "folder\\"}},
        {"a trash item", {"[Trash]/0000.dat"}},
        {"metadata of the system that wrote the archive", {"__MACOSX/._a.xml"}},
        {"no part name: an empty segment", {"a//b"}},
        {"no part name: a segment that ends in a dot", {"a./b", "a/./b"}},
        {"no part name: a percent-encoded slash or backslash", {"a%2fb", "a%5Cb"}},
        {"no part name: a percent-encoded character that needs no encoding", {"a%41", "a%7e"}},
        {"no part name: a percent sign without two hexadecimal digits", {"100%", "a%2", "a%zz"}},
        {"a piece of an incomplete sequence", {"a/[0].piece"}},
    };
    for (const auto& [reason, items] : ignored) {
        for (const char* item : items) {
            ZipPackage package(makeZip({stored(item, "content")}));
            package.open(OpenMode::ReadOnly);
            EXPECT_TRUE(package.getParts().empty()) << item;
            ASSERT_EQ(package.ignoredItems().size(), 1U) << item;
            EXPECT_EQ(package.ignoredItems()[0].name, item);
            EXPECT_EQ(package.ignoredItems()[0].reason, reason) << item;
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
    for (const std::string row : {"a/b | a\\b", "a/[0].last.piece | a", "a/[0].piece | A/[0].last.piece"}) {
        const auto [first, second] = columns<2>(row);
        ZipPackage package(makeZip({stored(first, ""), stored(second, "")}));
        EXPECT_FAILS(EBADMSG, "archive in memory: ", package.open(OpenMode::ReadOnly)) << row;
    }
}

TEST(ZipItemNames, ofNewPartsMustBePartNames) {
    ZipPackage package(Bytes{});
    package.open(OpenMode::CreateOnly);
    const std::u16string tooLong = u'/' + std::u16string(0x10000, u'a');
    for (const std::u16string name :
         {u"", u"/", u"a", u"/a/", u"/a//b", u"/a.", u"/a b", u"/\u00e9", u"/a%2Fb", u"/[Content_Types].xml",
          u"/a/[0].piece", u"/C:/a", u"/__MacOSX/a", u"/_Rels/.rels", u"/a/_rels/b.RELS", tooLong.c_str()}) {
        EXPECT_FAILS(EINVAL, "no part name: ", create(package, name, ""))
            << opc::toUDEString(name.substr(0, 80));
    }
    EXPECT_TRUE(package.getParts().empty());
}

TEST(ZipItemNames, ofNewPartsMayNotLeadOtherProgramsToOtherItems) {
    const std::string cases[] = {"a  | /a | a%20",    "a | /a;1 | a",     "b/A | /C:B/a | b/A",
                                 "./a | /a | ./a",    "%61/ | /a | %61/", "b//a!.. | /b/a%21 | b//a!..",
                                 "a./a | /a/A | a./a"};
    for (const std::string& row : cases) {
        const std::size_t end = row.find(" | /");
        const auto [name, other] = columns<2>(row.substr(end + 3));
        ZipPackage package(makeZip({stored(row.substr(0, end), ""), stored("same;1", "")}));
        package.open(OpenMode::ReadWrite);
        const std::u16string partName(name.begin(), name.end());
        EXPECT_FAILS(EINVAL, "no part name here: other programs may extract it over " + other,
                     create(package, partName, ""))
            << row;
        EXPECT_EQ(package.getParts().size(), package.ignoredItems().empty() ? 2U : 1U) << row;
        create(package, u"/same;1", "");
        package.deletePart(u"/same;1");
        create(package, u"/same", "");
        package.close(false);
        package.open(OpenMode::ReadOnly);
    }
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
