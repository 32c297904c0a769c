#include "PhysicalSupport.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/physical/ZipPackage.hpp>

#include <cstdlib>
#include <ctime>
#include <map>
#include <set>

namespace {

using namespace opc::test;
using opc::physical::ZipPackage;

/// What is said of the archives that tests/data/zip/make_hostile.py writes, behind an archive's name.
struct Case {
    std::string message;
    std::vector<const char*> archives;
    int code = EBADMSG;
};

const std::string DIRECTORY = "can't read the directory of the archive: ";
const std::string OVER = "other programs may extract it over ";
const std::string BY_PATH = "by its Unicode Path field " + OVER;

const Case CASES[] = {
    {"an empty file, no package", {"nothing"}},
    {DIRECTORY + "no end record: cut off, or not a ZIP archive",
     {"no-archive", "end-record-cut-off", "bytes-behind-beyond-reach"}},
    {DIRECTORY + "cut off within its comment", {"comment-longer-than-archive"}},
    {DIRECTORY + "1 byte stands behind the end of the archive",
     {"bytes-behind", "archive-within-bytes-around", "zip64-archive-within-bytes-behind",
      "directory-within-content-with-bytes-behind"}},
    {DIRECTORY + "9 bytes stand behind the end of the archive", {"end-record-behind-cut-off"}},
    {DIRECTORY + "76 bytes stand behind the end of the archive", {"zip64-records-behind"}},
    {DIRECTORY + "38 bytes stand behind the end of the archive", {"item-behind"}},
    {DIRECTORY + "it doesn't lie where the end record says",
     {"directory-cut-off", "beginning-cut-off", "bytes-in-front", "directory-beyond-archive"}},
    {DIRECTORY + "two end records", {"second-end-record-in-comment"}},
    {DIRECTORY + "it can be understood in two ways",
     {"directory-within-content", "archive-behind", "end-record-in-comment-with-bytes-behind"}},
    {"is one of several files that make up an archive", {"several-disks"}, ENOTSUP},
    {DIRECTORY + "too short for its number of items", {"more-items-than-directory"}},
    {DIRECTORY + "longer than its items", {"fewer-items-than-directory"}},
    {DIRECTORY + "no entry where item 2 should have one", {"directory-entry-overwritten"}},
    {DIRECTORY + "shorter than its items", {"name-beyond-directory"}},
    {DIRECTORY + "the ZIP64 locator leads nowhere",
     {"zip64-locator-leads-nowhere", "zip64-locator-beyond-archive"}},
    {DIRECTORY + "something stands behind the numbers of the ZIP64 end record",
     {"zip64-record-within-another"}},
    {DIRECTORY + "the two end records differ", {"zip64-record-differs"}},
    {"more than 100000 items", {"zip64-million-millions-of-items"}, EFBIG},
    {"a: its ZIP64 field is missing or too short", {"zip64-field-missing", "zip64-field-short"}},
    {"a: overlaps with b", {"one-local-header-for-two", "item-within-another"}},
    {"001: overlaps with 002", {"bomb-of-42-kB"}},
    {"a: reaches beyond the items of the archive", {"item-beyond-archive", "content-reaches-into-directory"}},
    {"a: can't read: no local header where the directory says", {"local-header-overwritten"}},
    {"a: can't read: its local header has another name",
     {"local-header-other-name", "local-header-other-case"}},
    {"[trash]/0: can't read: its local header has another name", {"ignored-item-with-other-local-name"}},
    {"folder/: can't read: its local header differs from the directory",
     {"ignored-item-with-other-local-size"}},
    {"\u00e9: can't read: its local header differs from the directory", {"local-header-in-other-encoding"}},
    {"in front of c: an item that the directory doesn't list", {"item-between-items"}},
    {"in front of [Content_Types].xml: an item that the directory doesn't list", {"item-in-front"}},
    {"in front of the directory: an item that the directory doesn't list", {"item-in-front-of-directory"}},
    {"a: can't read: its data descriptor differs from the directory",
     {"descriptor-missing", "descriptor-with-other-checksum", "descriptor-with-other-size",
      "descriptor-with-other-packed-size", "descriptor-differs-behind-complete-header"}},
    {"more than 16777216 bytes belong to no item", {"unused-17-MB"}, EFBIG},
    {"./a: " + OVER + "a", {"shadow-by-dot-segment"}},
    {"f//.//a: " + OVER + "f/a", {"shadow-by-folders-of-nothing"}},
    {".\\\\a: " + OVER + "a", {"shadow-by-backslashes"}},
    {"%61: " + OVER + "a", {"shadow-by-encoding"}},
    {"b/%2E%2e/F/%2e/A: " + OVER + "f/a", {"shadow-by-encoded-dot-segments"}},
    {"f./a...: " + OVER + "f/a", {"shadow-by-dots-behind"}},
    {"a : " + OVER + "a", {"shadow-by-blank-behind"}},
    {"a?: " + OVER + "a", {"shadow-by-control-character"}},
    {"a;12: " + OVER + "a", {"shadow-by-version"}},
    {"a::$DATA: " + OVER + "a", {"shadow-by-stream"}},
    {"F:$I30:$Index_Allocation/a: " + OVER + "f/a", {"shadow-by-stream-of-folder"}},
    {"c:a: " + OVER + "a", {"shadow-by-drive"}},
    {"a/: " + OVER + "a", {"shadow-by-folder"}},
    {"a/[1].piece: " + OVER + "a", {"shadow-by-piece-without-others"}},
    {"a//[0].last.piece: " + OVER + "a", {"shadow-of-piece"}},
    {"./[content_types].xml: " + OVER + "[Content_Types].xml", {"shadow-of-content-types"}},
    {"%5BContent_Types%5d.xml: " + OVER + "[Content_Types].xml", {"shadow-of-content-types-by-encoding"}},
    {"a.: " + OVER + "a%20", {"shadow-of-odd-item"}},
    {"\u00e9: by its name in code page 437 " + OVER + "%E2%94%9C%E2%8C%90", {"shadow-by-code-page"}},
    {"\u0398: by its name in Latin-1 " + OVER + "%C3%A9", {"shadow-by-latin-1"}},
    {"b: " + BY_PATH + "a",
     {"shadow-by-unicode-path", "shadow-by-unicode-path-in-directory",
      "shadow-by-unicode-path-in-local-header"}},
    {"b: two Unicode Path fields", {"unicode-path-twice"}},
    {"[trash]/0: " + BY_PATH + "a", {"shadow-by-unicode-path-of-ignored"}},
    {"b: " + BY_PATH + "[Content_Types].xml", {"shadow-of-content-types-by-unicode-path"}},
    {"b: its name leads to a folder above in its Unicode Path field", {"folder-above-by-unicode-path"}},
    {"a: can't read: its local header differs from the directory",
     {"local-header-other-method", "local-header-other-size", "local-header-other-packed-size",
      "local-header-other-checksum", "local-header-encrypted", "local-header-encrypted-strongly",
      "local-header-sizes-behind-descriptor-flag"}},
    {"a: can't read: it reaches into what lies behind it", {"local-extra-field-too-long"}},
    {"[Content_Types].xml: a second content types stream", {"two-content-types-streams"}},
    {"[content_types].XML: a second content types stream", {"two-content-types-streams-in-other-case"}},
    {"[Content_Types].xml/[0].last.piece: a second content types stream",
     {"content-types-stream-and-pieces-of-one"}},
    {"a: another item has the same part name", {"name-twice"}},
    {"A: another item has the same part name", {"name-twice-in-other-case"}},
    {"a%20b: another item has the same part name", {"name-twice-encoded"}},
    {"_Rels/.RELS: another item has the same part name", {"relationships-twice"}},
    {"a/[0].last.piece: another item is the same piece", {"piece-twice"}},
    {"../a: its name leads to a folder above", {"folder-above"}},
    {"a/b/../../../c: its name leads to a folder above", {"folder-above-in-the-middle"}},
    {"a\\..\\..\\b: its name leads to a folder above", {"folder-above-with-backslash"}},
    {"/etc/passwd: its name is an absolute path", {"absolute-path"}},
    {"\\\\host\\share\\a: its name is an absolute path", {"absolute-path-of-network"}},
    {"C:/a: its name begins with a drive", {"drive-path"}},
    {"c:\\a: its name begins with a drive", {"drive-path-with-backslash"}},
    {"item 2: a zero byte in its name", {"zero-byte-in-name"}},
    {"item 2: its name isn't the UTF-8 that it is said to be", {"name-is-no-utf8"}},
    {"item 2: its name has more bytes than the limit of 4096", {"name-of-65535-characters"}, EFBIG},
    {"item 2: deeper in folders than the limit of 256", {"thousand-nested-folders"}, EFBIG},
    {"a: is stored, but its two sizes differ", {"stored-sizes-differ"}},
    {"a: can't read: longer than the directory says", {"size-too-small", "size-zero"}},
    {"a: can't read: shorter than the directory says", {"size-too-large"}},
    {"a: can't read: its compressed data is damaged",
     {"packed-size-too-small", "deflate-without-data", "deflate-damaged", "deflate-unfinished"}},
    {"a: can't read: something stands behind its compressed data", {"bytes-behind-empty-deflate"}},
    {"a: can't read: its checksum is wrong", {"checksum-wrong"}},
    {"a: is encrypted",
     {"encrypted", "encrypted-strongly", "encrypted-with-header", "encrypted-by-field",
      "encrypted-by-local-field"},
     ENOTSUP},
    {"[trash]/0: is encrypted", {"encrypted-ignored"}, ENOTSUP},
    {"a: has compression method 14; Store and Deflate alone are read", {"method-lzma"}, ENOTSUP},
    {"f/: has compression method 14; Store and Deflate alone are read", {"method-lzma-of-folder"}, ENOTSUP},
    {"a: the ratio of its size to its compressed size is above the limit of 1000",
     {"bomb-by-its-own-account"},
     EFBIG},
    {"a: its size in bytes is above the limit of 17179869184", {"part-of-17-GiB"}, EFBIG},
};

/// What is said of archives leniently, if it is something else; nothing if they are taken.
const std::map<std::string, std::string> LENIENTLY = {
    {"bytes-behind", ""},
    {"deflate-unfinished", ""},
    {"encrypted-ignored", ""},
    {"method-lzma-of-folder", ""},
    {"end-record-behind-cut-off", DIRECTORY + "another record stands behind the end record"},
    {"zip64-records-behind", DIRECTORY + "another record stands behind the end record"},
    {"directory-within-content-with-bytes-behind", DIRECTORY + "it can be understood in two ways"},
    {"item-behind", "behind the end record: an item that the directory doesn't list"},
};

/// @return how many oddities there are
std::size_t readAll(const std::filesystem::path& path, bool lenient) {
    opc::physical::ZipOptions options;
    options.lenient = lenient;
    ZipPackage package(path, options);
    package.open(OpenMode::ReadOnly);
    rest(*package.getContentTypeInputStream());
    for (auto* part : package.getParts())
        content(*part);
    return package.getOddities().size();
}

/// A line of /proc/self/status, in KiB.
long memory(const std::string& line) {
    std::ifstream status("/proc/self/status");
    for (std::string text; std::getline(status, text);) {
        if (text.compare(0, line.size(), line) == 0)
            return std::strtol(text.c_str() + line.size(), nullptr, 10);
    }
    return 0;
}

#ifdef __SANITIZE_ADDRESS__ // slower, and keeps freed memory for a while
constexpr std::clock_t MOST_TIME = 1000;
constexpr long MOST_MEMORY = 512L * 1024L;
#else
constexpr std::clock_t MOST_TIME = 100;
constexpr long MOST_MEMORY = 64L * 1024L;
#endif

TEST(HostileArchives, areRefusedSoonAndWithoutSpendingMemory) {
    const std::filesystem::path folder = OPCMODEL_HOSTILE_ARCHIVES;
    std::set<std::string> tested;
    for (const Case& c : CASES) {
        for (const char* archive : c.archives) {
            const auto path = folder / (std::string(archive) + ".zip");
            std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
            const long memoryBefore = memory("VmRSS:");
            const std::clock_t start = std::clock(); // of the processor, which other processes don't lengthen
            EXPECT_FAILS(c.code, path.string() + ": " + c.message, readAll(path, false)) << archive;
            const auto otherwise = LENIENTLY.find(archive);
            const std::string& message = otherwise == LENIENTLY.end() ? c.message : otherwise->second;
            if (message.empty()) {
                EXPECT_EQ(readAll(path, true), 1U) << archive;
            } else {
                EXPECT_FAILS(c.code, path.string() + ": " + message, readAll(path, true)) << archive;
            }
            EXPECT_LT((std::clock() - start) * 1000 / CLOCKS_PER_SEC, MOST_TIME) << archive;
            EXPECT_LT(memory("VmHWM:") - memoryBefore, MOST_MEMORY) << archive;
            tested.insert(path.filename());
        }
    }
    for (const auto& file : std::filesystem::directory_iterator(folder))
        EXPECT_EQ(tested.count(file.path().filename()), 1U) << file.path() << " isn't tested";
    EXPECT_GE(tested.size(), 40U);
}

} // namespace
