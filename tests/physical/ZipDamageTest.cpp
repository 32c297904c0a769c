#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <cerrno>

namespace {

using namespace opc::test;

void readAll(const Bytes& archive, const ZipOptions& options = {}) {
    ZipPackage package(archive, options);
    package.open(OpenMode::ReadOnly);
    for (auto* part : package.getParts())
        content(*part);
}

TEST(ZipDamage, ofAnEmptyPieceBehindAnotherStaysDamage) {
    RawItem empty = stored("a/[1].last.piece", "");
    ++empty.crc;
    ZipPackage package(makeZip({stored("a/[0].piece", "x"), empty}));
    package.open(OpenMode::ReadOnly);
    auto* stream = package.getParts()[0]->getInputStream();
    unsigned char byte = 0;
    EXPECT_FAILS(EBADMSG, "[1].last.piece: can't read: its checksum is wrong", stream->read(&byte, 1));
    EXPECT_FAILS(EBADMSG, "behind a damaged place", stream->read(&byte, 1));
}

TEST(ZipDamage, isReportedWithoutControlCharacters) {
    RawItem item = stored("a\x1B[2J\n", "x");
    item.flags = 1;
    EXPECT_FAILS(ENOTSUP, "archive in memory: a?[2J?: is encrypted", readAll(makeZip({item})));
}

TEST(ZipDamage, isFoundWhereverAnArchiveIsCutOff) {
    const Bytes archive = makeZip(
        {stored("[Content_Types].xml", "types"), oddlyDeflated("b", "some text"), stored("c/d.xml", "more")});
    for (std::size_t size = 1; size < archive.size(); ++size) {
        EXPECT_FAILS(EBADMSG, "archive in memory: can't read the directory of the archive: ",
                     readAll(Bytes(archive.data(), archive.data() + size)))
            << size;
    }
    EXPECT_FAILS(EBADMSG, "archive", readAll(Bytes(5000, 'P')));
}

TEST(ZipDamage, ofWhatIsNoArchiveIsCalledByItsFormat) {
    const std::string ole2 = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    const Bytes archive = makeZip({stored("a", "x")});
    const std::pair<std::string, const char*> cases[] = {
        {ole2 + std::string(5000, '\0'), "an encrypted or older Office file (OLE2), no package"},
        {ole2 + std::string(archive.begin(), archive.end()),
         "an encrypted or older Office file (OLE2), no package"},
        {"%PDF-1.7\n", "a PDF file, no package"},
        {"\xEF\xBB\xBF\r\n <!DOCTYPE HTML>", "an HTML page, no package"},
        {"\x1F\x8B\x08", "a gzip file, no package"},
        {"PK\3\4 and no more", "no end record: cut off, or not a ZIP archive"},
    };
    for (const auto& odd : cases)
        EXPECT_FAILS(EBADMSG, odd.second, readAll(Bytes(odd.first.begin(), odd.first.end())));
}

TEST(ZipDamage, ofAnyByteEndsInAnExceptionOrInTheRightContent) {
    const Bytes sound = makeZip({oddlyDeflated("b", "some text"), stored("c", "more text")});
    for (std::size_t i = 0; i < sound.size(); ++i) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            Bytes archive = sound;
            archive[i] = static_cast<unsigned char>(archive[i] ^ change);
            ZipPackage package(archive);
            try {
                package.open(OpenMode::ReadOnly);
                for (auto* part : package.getParts()) {
                    const std::string text = content(*part);
                    EXPECT_TRUE(text == "some text" || text == "more text") << i << ": " << text;
                }
            } catch (const opc::Exception&) {
                // As it should be for most.
            }
        }
    }
}

TEST(ZipDamage, isRefusedAboveTheLimits) {
    RawItem bomb = stored("a", "x");
    bomb.method = 8;
    bomb.size = 5000;
    const std::pair<void (*)(ZipOptions&), const char*> cases[] = {
        {[](ZipOptions& options) { options.maxItems = 1; }, "more than 1 items"},
        {[](ZipOptions& options) { options.maxDirectorySize = 90; }, "a directory of more than 90 bytes"},
        {[](ZipOptions& options) { options.maxItemSize = 4999; },
         "a: its size in bytes is above the limit of 4999"},
        {[](ZipOptions& options) { options.maxTotalSize = 5000; },
         "b: the size in bytes of all items together is above the limit of 5000"},
        {[](ZipOptions& options) {
             options.ratioFloor = 4999;
             options.maxRatio = 2500;
         },
         "a: the ratio of its size to its compressed size is above the limit of 2500"},
    };
    for (const auto& [lower, message] : cases) {
        ZipOptions options;
        lower(options);
        EXPECT_FAILS(EFBIG, message, readAll(makeZip({bomb, stored("b", "y")}), options));
    }
}

TEST(ZipDamage, isNotCreatedAboveTheLimits) {
    ZipOptions options;
    options.maxNameLength = 19;
    options.maxDepth = 2;
    options.maxItems = 3;
    ZipPackage package(ZipPackage::Bytes{}, options);
    package.open(OpenMode::CreateOnly);
    create(package, u"/1234567890123456789", "");
    EXPECT_FAILS(EFBIG, "its name has more bytes than the limit of 19",
                 create(package, u"/12345678901234567890", ""));
    create(package, u"/a/b/c", "");
    EXPECT_FAILS(EFBIG, "deeper in folders than the limit of 2", create(package, u"/d/e/f/g", ""));
    EXPECT_FAILS(EFBIG, "too many items for the limit of 3", create(package, u"/h", ""));
    create(package, u"/A/B/C", "again");
    putContentTypes(package, "types");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(package), u"/1234567890123456789 /a/b/c ");
}

} // namespace
