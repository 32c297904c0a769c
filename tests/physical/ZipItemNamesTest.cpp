#include "PhysicalSupport.hpp"
#include "support/Cases.hpp"
#include "support/RawZip.hpp"

#include <cerrno>

namespace {

using namespace opc::test;

TEST(ZipItemNames, becomeNamesOfParts) {
    forEachCase("zip/item-names.txt", [](const std::string& item, const std::string& name) {
        ZipPackage package(makeZip({stored(item, "content")}));
        package.open(OpenMode::ReadOnly);
        const auto parts = package.getParts();
        ASSERT_EQ(parts.size(), 1U);
        EXPECT_EQ(opc::toUDEString(parts[0]->getName()), name);
        EXPECT_EQ(content(*parts[0]), "content");
        EXPECT_TRUE(package.ignoredItems().empty());
    });
}

TEST(ZipItemNames, ofOtherItemsAreIgnoredWithAReason) {
    forEachCase("zip/ignored-items.txt", [](const std::string& reason, const std::string& item) {
        ZipPackage package(makeZip({stored(item, "content")}));
        package.open(OpenMode::ReadOnly);
        EXPECT_TRUE(package.getParts().empty());
        ASSERT_EQ(package.ignoredItems().size(), 1U);
        EXPECT_EQ(package.ignoredItems()[0].name, item);
        EXPECT_EQ(package.ignoredItems()[0].reason, reason);
    });
}

TEST(ZipItemNames, areReadInTheEncodingThatTheyAreIn) {
    // é in code page 437, and then in UTF-8 with the flag for UTF-8.
    RawItem flagged = stored("\xC3\xA9.u", "");
    flagged.flags = 0x800;
    ZipPackage package(makeZip({stored("\x82.c", ""), flagged}));
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(package), u"/%C3%A9.c /%C3%A9.u ");
}

/// What a package tells of an archive.
std::string misnamedIn(const Bytes& archive) {
    ZipPackage package(archive);
    package.open(OpenMode::ReadOnly);
    std::string told;
    for (const auto& item : package.getMisnamedItems())
        told += opc::toUDEString(item.name) + ": " + item.reason + "\n";
    return told;
}

TEST(ZipItemNames, areToldIfOtherProgramsMayNotFindTheirParts) {
    const struct {
        std::string item, reason;
        unsigned short flags = 0;
    } cases[] = {
        {"a/b.xml", ""},
        {"a/\xC3\xA9%20.xml", "its name isn't percent-encoded", 0x800},
        {"a/%C3%A9.xml", ""},
        {"a/b.xml/[0].last.piece", "it is a piece of an interleaved part"},
        {"[Content_Types].xml/[0].last.piece", "it is a piece of an interleaved part"},
        {"a/b.xml/[0].LAST.piece", "its name has another letter case than that of pieces"},
        {"a b.xml/[0].piece", ""}, // it is no part
        {"a/[b].xml", "its name has a character that must be percent-encoded"},
        {"a/\xC3\xA9.xml", "its name isn't marked as UTF-8"},
        {"a\\b.xml", "its name has a backslash"},
        {"a/_RELS/b.rels", "its name has another letter case than that of relationships parts"},
        {"[content_types].xml", "its name has another letter case than the standard's"},
        {"a/b.xml;1", "some systems change its name"},
        {"a/b.xml;c", ""},
        {"a/b.xml::$DATA", "some systems change its name"},
        {"a/b.xml%20", "some systems change its name"},
        {"a/b.xml%3B1", "some systems change its name"},
        {"a/_rels/b.xml.rels/", "it has the name of a folder, and content"},
        {"a\\b.xml\\", "it has the name of a folder, and content"},
        {"[trash]/b.xml/", "it has the name of a folder, and content"},
    };
    for (const auto& one : cases) {
        RawItem item = stored(one.item, "content");
        item.flags = one.flags;
        EXPECT_EQ(misnamedIn(makeZip({item})), one.reason.empty() ? "" : one.item + ": " + one.reason + "\n");
    }
}

std::string fieldOf(unsigned kind, const std::string& data, std::size_t size) {
    std::string bytes;
    for (const std::size_t number : {std::size_t{kind}, size})
        bytes += {static_cast<char>(number), static_cast<char>(number >> 8)};
    return bytes + data;
}

TEST(ZipItemNames, areToldIfHeadersSayMoreThanTheName) {
    const auto path = [](const std::string& name, std::size_t more = 0) {
        return fieldOf(0x7075, "\1CRC_" + name, name.size() + 5 + more);
    };
    const auto comment = [](const std::string& text) { return fieldOf(0x6375, text, text.size()); };
    const auto numbers = [](const std::string& all) { return fieldOf(1, all, all.size()); };
    const std::string other = "a: a Unicode Path field gives it another name\n";
    const std::string zeros(16, '\0');
    const std::string mark = " has the mark of a record of an archive\n";
    const std::string negative =
        " has so many bytes that some programs take their number for a negative one\n";
    const struct {
        std::string told;
        std::function<void(RawItem&)> change;
    } cases[] = {
        {"", [&](RawItem& it) { it.extra = it.localExtra = path("a"); }},
        {other, [&](RawItem& it) { it.extra = path("b"); }},
        {other, [&](RawItem& it) { it.localExtra = path("A"); }},
        {other, [&](RawItem& it) { it.extra = path(""); }},
        {other, [&](RawItem& it) { it.localExtra = path("b", 1); }}, // cut off
        {"f/: a Unicode Path field gives it another name\n",
         [&](RawItem& it) {
             it = stored("f/", "");
             it.extra = path("b");
         }},
        {"", [](RawItem& it) { it = stored("f/", ""); }},
        {"f/: it has the name of a folder, and content\n",
         [](RawItem& it) {
             it = stored("f/", "");
             it.data = "hidden";
             it.method = 8;
         }},
        {"a: its record in the directory holds data of an unknown kind\n", // such as a link
         [&](RawItem& it) { it.extra = fieldOf(0x756E, "link", 4); }},
        {"a: its local header holds data of an unknown kind\n",
         [](RawItem& it) { it.localExtra = "\1\2\3"; }},
        {"", [&](RawItem& it) { it.localExtra = fieldOf(0x4453, "rights", 6) + comment("comment"); }},
        {"", [&](RawItem& it) { it.extra = fieldOf(0xA220, "\x28\xA0 1rrr", 7) + fieldOf(0xCAFE, "", 0); }},
        {"a: its local header" + mark +
             "a: its local header holds data of an unknown kind\n", // in the room for growth
         [&](RawItem& it) { it.localExtra = fieldOf(0xA220, "\x28\xA0 1PK\3\4", 8); }},
        {"a: its ZIP64 field has other numbers\n", [&](RawItem& it) { it.extra = numbers(zeros); }},
        {"a: its ZIP64 field has other numbers\n",
         [&](RawItem& it) { it.extra = numbers(zeros + std::string("\1\1", 2) + std::string(6, '\0')); }},
        {"a: its ZIP64 field has other numbers\n",
         [&](RawItem& it) { it.localExtra = numbers("") + numbers(""); }},
        {"a: its record in the directory" + mark, [&](RawItem& it) { it.extra = comment("PK\1\2"); }},
        {"a: its record in the directory" + mark, [](RawItem& it) { it.comment = "PK\5\6"; }},
        // Marks can stand in two fields, or in fields that nobody reads.
        {"a: its record in the directory" + mark,
         [&](RawItem& it) { it.extra = comment("PK"), it.comment = "\1\2"; }},
        {"PK: its record in the directory" + mark,
         [&](RawItem& it) { it = stored("PK", ""), it.extra = fieldOf(0x0605, "", 0); }},
        {"a: its record in the directory" + mark + "a: its local header" + mark,
         [](RawItem& it) { it.time = 0x06064B50; }},
        {"a: its local header" + mark,
         [&](RawItem& it) { it = stored("a", "\3\4"), it.localExtra = comment("PK"); }},
        {"a: its content has the mark of its end\n"
         "a: its data descriptor has no mark\n",
         [](RawItem& it) {
             it = stored("a", "PK");
             it.streamed = true, it.flags = 8, it.descriptorIsSigned = false;
             it.crc = 0x0807;
         }},
        {"a/[1].piece: its record in the directory" + mark, // a piece that nobody joins
         [](RawItem& it) { it = stored("a/[1].piece", ""), it.comment = "PK\6\7"; }},
        {"", [](RawItem& it) { it.comment = "PK\5 PK"; }},
        {"", [](RawItem& it) { it.localExtra.assign(32767, '\0'); }},
        {"a: its local header" + negative, [](RawItem& it) { it.localExtra.assign(32768, '\0'); }},
        {"a: its record in the directory" + negative, [](RawItem& it) { it.extra.assign(32768, '\0'); }},
        {"a: its comment" + negative, [](RawItem& it) { it.comment.assign(32768, '.'); }},
        {"a: its headers have different flags\n",
         [](RawItem& it) { it.changeLocal = [](RawItem& local) { local.flags = 2; }; }},
        {"a: its data descriptor has no mark\n",
         [](RawItem& it) { it.streamed = true, it.flags = 8, it.descriptorIsSigned = false; }},
        {"a: its data descriptor has no mark\n",
         [](RawItem& it) {
             it.streamed = true, it.flags = 8, it.descriptorIsSigned = false;
             it.zip64 = true, it.descriptorWidth = 8;
         }},
        {"a: its data descriptor has no mark\n",
         [](RawItem& it) {
             it = oddlyDeflated("a", "content");
             it.streamed = true, it.flags = 8, it.descriptorIsSigned = false;
         }},
        {"a: its compressed data has the marks of its end and of more\n", // in a stored block
         [](RawItem& it) {
             it =
                 oddlyDeflated("a", std::string(66000, 'x') + "PK\7\10" + std::string(66000, 'x') + "PK\1\2");
             it.streamed = true, it.flags = 8;
         }},
        {"a: its content has the mark of its end\n", // whose length is in the ZIP64 field
         [](RawItem& it) { it = stored("a", "PK\1\2"), it.zip64 = true; }},
        {"a: its content has the mark of its end\n",
         [](RawItem& it) { it = oddlyDeflated("a", "PK\3\4"), it.zip64 = true; }},
        {"", [](RawItem& it) { it.zip64 = true; }},
        {"", // such a mark is there by chance
         [](RawItem& it) {
             it = oddlyDeflated("a", "PK\1\2, PK\7\10");
             it.streamed = true, it.flags = 8;
         }},
        {"a: its data descriptor has no room for the numbers of ZIP64\n",
         [](RawItem& it) {
             it = oddlyDeflated("a", "content");
             it.streamed = true, it.flags = 8, it.zip64 = true;
         }},
        {"", [](RawItem& it) { it.streamed = true, it.flags = 8, it.zip64 = true, it.descriptorWidth = 8; }},
        {"a: by its attributes it is a file of an unknown kind\n",
         [](RawItem& it) { it.attributes = 0160644U << 16U; }},
        {"", [](RawItem& it) { it.attributes = 0100644U << 16U | 0x20U; }},
        {"a: by its attributes it is a symbolic link\n",
         [](RawItem& it) { it.attributes = 0120777U << 16U; }},
        {"a: by its attributes it is a symbolic link\n", // on BeOS, too
         [](RawItem& it) { it.versionMadeBy = 0x1014, it.attributes = 0120777U << 16U; }},
        {"", [](RawItem& it) { it.versionNeeded = 0x32D, it.flags = 2; }},
        {"a: it asks for more than other programs may have\n",
         [](RawItem& it) { it.changeLocal = [](RawItem& local) { local.versionNeeded = 0x214; }; }},
        {"a: it is said to be in another file of several\n", [](RawItem& it) { it.disk = 1; }},
        {"a: it asks for more than other programs may have\n"
         "a: it asks for more than other programs may have\n", // in both headers
         [](RawItem& it) { it.versionNeeded = 52; }},
        {"a: it asks for more than other programs may have\n",
         [](RawItem& it) { it.changeLocal = [](RawItem& local) { local.versionNeeded = 63; }; }},
        {"a: it asks for more than other programs may have\n"
         "a: it asks for more than other programs may have\n",
         [](RawItem& it) { it.flags = 0x20; }},
        {"a: its data descriptor is missing\n", [](RawItem& it) { it.flags = 8; }},
        {"a: its content has the mark of its end\n",
         [](RawItem& it) {
             it = stored("a", "PPK\3\4 another item");
             it.streamed = true, it.flags = 8;
         }},
        {"", [](RawItem& it) { it = stored("a", "PK\3\4"); }},
        {"a: by its attributes it is a folder\n",
         [](RawItem& it) { it.versionMadeBy = 0x1314, it.attributes = 0040755U << 16U; }},
        {"a: by its attributes it is a folder\n",
         [](RawItem& it) { it.versionMadeBy = 20, it.attributes = 0x10; }},
        {"a: by its attributes it is the label of a disk\n",
         [](RawItem& it) { it.versionMadeBy = 20, it.attributes = 8; }},
        {"", [](RawItem& it) { it.streamed = true, it.flags = 8; }},
        {"a: its content has the mark of its end\n",
         [](RawItem& it) {
             it = stored("a", std::string(65533, 'x') + "PK\7\10");
             it.streamed = true, it.flags = 8;
         }},
        {"4 bytes in front of a that belong to no item: they aren't read here\n",
         [](RawItem& it) { it.inFront = "{\\rt"; }},
    };
    for (const auto& one : cases) {
        RawItem item = stored("a", "content");
        one.change(item);
        EXPECT_EQ(misnamedIn(makeZip({item, stored("z", "")})), one.told) << &one - cases;
    }
}

std::string littleEndian(std::uint64_t number, unsigned width) {
    std::string bytes;
    for (; width > 0; --width, number >>= 8)
        bytes += static_cast<char>(number & 0xFF);
    return bytes;
}

/// An end record of a directory that isn't right in front of it.
std::string endRecord(std::uint64_t directory) {
    return "PK\5\6" + littleEndian(0, 4) + littleEndian(0x10001, 4) + littleEndian(0, 4) +
           littleEndian(directory, 4) + littleEndian(0, 2);
}

TEST(ZipItemNames, areToldWithOtherEndsOfTheArchive) {
    constexpr std::uint64_t CONTENT = 31; // the offset of that of the first item
    const auto withContent = [](const std::string& content) {
        return makeZip({stored("a", content), stored("z", "")});
    };
    const auto withZip64 = [](std::ptrdiff_t place, const std::string& bytes) {
        Bytes archive = makeZip({stored("a", "")}, {}, true);
        std::copy(bytes.begin(), bytes.end(), archive.end() - place);
        return archive;
    };
    const auto withItems = [](std::size_t count) {
        std::vector<RawItem> items;
        while (items.size() < count)
            items.push_back(stored(std::to_string(items.size()), ""));
        return makeZip(items);
    };
    const std::uint64_t directory = CONTENT + endRecord(0).size() + 31;
    const std::string locator = "PK\6\7" + littleEndian(0, 4) + littleEndian(CONTENT, 8) + littleEndian(1, 4);
    const std::string hidden = "it has the mark of a record of an archive";
    const std::string other = "an end record in a content leads to records, too";
    const struct {
        std::string told;
        Bytes archive;
    } cases[] = {
        {hidden, makeZip({stored("a", "")}, "PK\3\4")},
        {"", makeZip({stored("a", "")}, "PK\3")},
        {hidden, makeZip({stored("a", "")}, "\1\2" + std::string(0x4B50 - 2, '.'))}, // behind its size
        {hidden, withZip64(22 + 20 + 56 - 12, "PK\5\6")},                            // versions
        {hidden, withZip64(22 + 20 - 4, "PK\1\2")},                                  // a disk
        {"", withZip64(22 + 20, "PK\6\7")},
        {other, withContent(endRecord(directory))},
        {"", withContent(endRecord(directory + 1))},
        {"", withContent(endRecord(0xFFFFFFFE))},
        {other, withContent("PK\6\6" + locator + endRecord(0xFFFFFFFF))},
        {"", withContent("PK\6\5" + locator + endRecord(0xFFFFFFFF))},
        {"its numbers refer to a ZIP64 record that isn't there", withItems(65535)},
    };
    for (const auto& one : cases)
        EXPECT_EQ(misnamedIn(one.archive),
                  one.told.empty() ? "" : "the end of the archive: " + one.told + "\n")
            << &one - cases;
}

TEST(ZipItemNames, mayNotClash) {
    const std::pair<const char*, const char*> clashes[] = {
        {"a/b", "a\\b"}, {"a/[0].last.piece", "a"}, {"a/[0].piece", "A/[0].last.piece"}};
    for (const auto& [first, second] : clashes) {
        ZipPackage package(makeZip({stored(first, ""), stored(second, "")}));
        EXPECT_FAILS(EBADMSG, "archive in memory: ", package.open(OpenMode::ReadOnly)) << first;
    }
}

TEST(ZipItemNames, ofNewPartsMustBePartNames) {
    ZipPackage package(Bytes{});
    package.open(OpenMode::CreateOnly);
    const auto check = [&package](const std::u16string& name) {
        EXPECT_FAILS(EINVAL, "no part name: ", create(package, name, ""));
    };
    forEachCase("zip/new-names-refused.txt", check);
    check(u'/' + std::u16string(0x10000, u'a'));
    EXPECT_TRUE(package.getParts().empty());
}

TEST(ZipItemNames, ofNewPartsMayNotLeadOtherProgramsToOtherItems) {
    forEachCase("zip/names-that-mislead.txt",
                [](const std::string& item, const std::u16string& name, const std::string& other) {
                    ZipPackage package(makeZip({stored(item, ""), stored("same;1", "")}));
                    package.open(OpenMode::ReadWrite);
                    EXPECT_FAILS(EINVAL, "no part name here: other programs may extract it over " + other,
                                 create(package, name, ""));
                    EXPECT_EQ(package.getParts().size(), package.ignoredItems().empty() ? 2U : 1U);
                    create(package, u"/same;1", "");
                    package.deletePart(u"/same;1");
                    create(package, u"/same", "");
                    package.close(false);
                    package.open(OpenMode::ReadOnly);
                });
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
