#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <opc/core/Text.hpp>

#include <cerrno>

/// @file
/// What `ZipOptions::lenient` accepts. The hostile archives have what it refuses.

namespace {

using namespace opc::test;

ZipOptions lenient() {
    ZipOptions options;
    options.lenient = true;
    return options;
}

RawItem unfinished(const std::string& name, const std::string& content) {
    RawItem item = oddlyDeflated(name, content);
    item.data[0] = '\0'; // not the last block
    return item;
}

RawItem ofMethod(std::uint16_t method, const std::string& name) {
    RawItem item = stored(name, "compressed");
    item.method = method;
    item.size = 1000;
    return item;
}

RawItem encrypted(const std::string& name, const std::string& extra = {}) {
    RawItem item = stored(name, "encrypted");
    item.flags = 0x41;
    item.size = 7;
    item.extra = item.localExtra = extra;
    return item;
}

Bytes operator+(Bytes archive, const std::string& more) {
    archive.insert(archive.end(), more.begin(), more.end());
    return archive;
}

/// One line for each oddity.
std::string oddities(ZipPackage& package) {
    std::string text;
    for (const auto& oddity : package.getOddities())
        text += opc::toUDEString(oddity.place) + ": " + oddity.what + "; " + oddity.done +
                (oddity.rule.empty() ? "" : " [" + oddity.rule + "]") + '\n';
    return text;
}

TEST(ZipLenient, takesWhatAllProgramsReadAlikeAndTellsOfIt) {
    const std::string end = " behind the end of the archive; not read, and dropped by the next save\n";
    const std::string unread = "; it can't be read, and stays as it is";
    const struct {
        Bytes archive;
        std::string oddities;
    } cases[] = {
        {makeZip({stored("a", "text")}), ""},
        {makeZip({stored("a", "text")}) + "\n", ": 1 byte stands" + end},
        {makeZip({stored("a", "text")}, "comment") + std::string(65528, '\0'), ": 65528 bytes stand" + end},
        {makeZip({stored("a", "text")}) + "PK \5\6", ": 5 bytes stand" + end},
        {makeZip({stored("a", "text"), ofMethod(9, "b")}),
         "b: has compression method 9; Store and Deflate alone are read" + unread + '\n'},
        {makeZip({stored("a", "text"), encrypted("[trash]/é")}),
         "[trash]/é: is encrypted" + unread + " [M3.9]\n"},
        {makeZip({stored("a", "text"), encrypted("b", std::string("\x17\0\2\0xy", 6))}),
         "b: is encrypted" + unread + " [M3.9]\n"},
        {makeZip({unfinished("a", "text")}),
         "a: its compressed data ends without the last block; it is read: size and checksum are right\n"},
    };
    for (const auto& c : cases) {
        ZipPackage package(c.archive, lenient());
        package.open(OpenMode::ReadOnly);
        EXPECT_EQ(content(*find(package, u"/a")), "text");
        EXPECT_EQ(oddities(package), c.oddities);
        if (auto* other = find(package, u"/b")) {
            EXPECT_FAILS(ENOTSUP, "b: ", other->getInputStream());
        }
    }
}

TEST(ZipLenient, readsUnfinishedDataOfAnySizeOnlyIfItIsTheRightContent) {
    for (const std::size_t size : {0U, 1U, 5000U, 60000U}) {
        RawItem item = unfinished("a", noise(size));
        RawItem shorter = item;
        ++shorter.size;
        RawItem other = item;
        ++other.crc;
        ZipPackage package(makeZip({item}), lenient());
        package.open(OpenMode::ReadOnly);
        EXPECT_TRUE(content(*package.getParts()[0]) == noise(size)) << size;
        EXPECT_EQ(package.getOddities().size(), 1U) << size;
        ASSERT_EQ(package.getMisnamedItems().size(), 1U) << size;
        EXPECT_EQ(package.getMisnamedItems()[0].reason, "its compressed data has no last block");
        for (const auto& [damaged, message] :
             {std::pair{shorter, "damaged"}, {other, "its checksum is wrong"}}) {
            ZipPackage refused(makeZip({damaged}), lenient());
            refused.open(OpenMode::ReadOnly);
            EXPECT_FAILS(EBADMSG, message, content(*refused.getParts()[0])) << size;
            EXPECT_EQ(refused.getOddities().size(), 0U) << size;
        }
    }
}

TEST(ZipLenient, savesWhatItCanNotReadAsItIs) {
    const std::vector<RawItem> items = {stored("[Content_Types].xml", "types"), unfinished("a", "text"),
                                        encrypted("b"), ofMethod(9, "c"), ofMethod(14, "d")};
    ZipPackage package(makeZip(items) + "behind", lenient());
    package.open(OpenMode::ReadWrite);
    create(package, u"/d", "new");
    create(package, u"/e", "new");
    package.close(false);
    const auto saved = readZip(package.bytes());
    for (const char* kept : {"a", "b", "c"}) {
        EXPECT_EQ(itemOf(saved, kept).data, itemOf(items, kept).data);
        EXPECT_EQ(itemOf(saved, kept).flags, itemOf(items, kept).flags);
        EXPECT_EQ(itemOf(saved, kept).method, itemOf(items, kept).method);
    }
    EXPECT_EQ(itemOf(saved, "d").method, 8) << "what is written anew can be read";
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getOddities().size(), 2U) << "nothing is behind it any longer";
    EXPECT_EQ(content(*find(package, u"/d")), "new");
}

} // namespace
