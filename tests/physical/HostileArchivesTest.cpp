#include "PhysicalSupport.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/physical/ZipPackage.hpp>

#include <cstdlib>
#include <ctime>
#include <set>

namespace {

using namespace opc::test;
using opc::physical::ZipPackage;

/// What is said of each archive that tests/data/zip/make_hostile.py writes, behind the archive's name.
struct Case {
    const char* archive;
    int code;
    const char* message;
};

const char* const NO_END =
    "can't read the directory of the archive: no end record: not a ZIP archive, cut off, or "
    "something behind it";
const char* const ELSEWHERE =
    "can't read the directory of the archive: it doesn't lie where the end record says";

const Case CASES[] = {
    {"nothing", EBADMSG, NO_END},
    {"no-archive", EBADMSG, NO_END},
    {"end-record-cut-off", EBADMSG, NO_END},
    {"directory-cut-off", EBADMSG, ELSEWHERE},
    {"beginning-cut-off", EBADMSG, ELSEWHERE},
    {"bytes-in-front", EBADMSG, ELSEWHERE},
    {"bytes-behind", EBADMSG, NO_END},
    {"comment-longer-than-archive", EBADMSG, NO_END},
    {"second-end-record-in-comment", EBADMSG, "can't read the directory of the archive: two end records"},
    {"directory-within-content", EBADMSG,
     "can't read the directory of the archive: it can be understood in two ways"},
    {"several-disks", ENOTSUP, "is one of several files that make up an archive"},
    {"more-items-than-directory", EBADMSG,
     "can't read the directory of the archive: too short for its number of items"},
    {"fewer-items-than-directory", EBADMSG, "can't read the directory of the archive: longer than its items"},
    {"directory-beyond-archive", EBADMSG, ELSEWHERE},
    {"directory-entry-overwritten", EBADMSG,
     "can't read the directory of the archive: no entry where item 2 should have one"},
    {"name-beyond-directory", EBADMSG, "can't read the directory of the archive: shorter than its items"},
    {"zip64-locator-leads-nowhere", EBADMSG,
     "can't read the directory of the archive: the ZIP64 locator leads nowhere"},
    {"zip64-locator-beyond-archive", EBADMSG,
     "can't read the directory of the archive: the ZIP64 locator leads nowhere"},
    {"zip64-record-differs", EBADMSG, "can't read the directory of the archive: the two end records differ"},
    {"zip64-million-millions-of-items", EFBIG, "more than 100000 items"},
    {"zip64-field-missing", EBADMSG, "a: its ZIP64 field is missing or too short"},
    {"zip64-field-short", EBADMSG, "a: its ZIP64 field is missing or too short"},

    {"one-local-header-for-two", EBADMSG, "a: overlaps with b"},
    {"item-within-another", EBADMSG, "a: overlaps with b"},
    {"bomb-of-42-kB", EBADMSG, "001: overlaps with 002"},
    {"item-beyond-archive", EBADMSG, "a: reaches beyond the items of the archive"},
    {"content-reaches-into-directory", EBADMSG, "a: reaches beyond the items of the archive"},
    {"local-header-overwritten", EBADMSG, "a: can't read: no local header where the directory says"},
    {"local-header-other-name", EBADMSG, "a: can't read: its local header has another name"},
    {"local-header-other-case", EBADMSG, "a: can't read: its local header has another name"},
    {"local-header-other-method", EBADMSG, "a: can't read: its local header differs from the directory"},
    {"local-header-other-size", EBADMSG, "a: can't read: its local header differs from the directory"},
    {"local-header-other-packed-size", EBADMSG, "a: can't read: its local header differs from the directory"},
    {"local-header-other-checksum", EBADMSG, "a: can't read: its local header differs from the directory"},
    {"local-header-encrypted", EBADMSG, "a: can't read: its local header differs from the directory"},
    {"local-header-sizes-behind-descriptor-flag", EBADMSG,
     "a: can't read: its local header differs from the directory"},
    {"local-extra-field-too-long", EBADMSG, "a: can't read: it reaches into what lies behind it"},

    {"two-content-types-streams", EBADMSG, "[Content_Types].xml: a second content types stream"},
    {"two-content-types-streams-in-other-case", EBADMSG,
     "[content_types].XML: a second content types stream"},
    {"content-types-stream-and-pieces-of-one", EBADMSG,
     "[Content_Types].xml/[0].last.piece: a second content types stream"},
    {"name-twice", EBADMSG, "a: another item has the same part name"},
    {"name-twice-in-other-case", EBADMSG, "A: another item has the same part name"},
    {"name-twice-encoded", EBADMSG, "a%20b: another item has the same part name"},
    {"piece-twice", EBADMSG, "a/[0].last.piece: another item is the same piece"},
    {"folder-above", EBADMSG, "../a: its name leads to a folder above"},
    {"folder-above-in-the-middle", EBADMSG, "a/b/../../../c: its name leads to a folder above"},
    {"folder-above-with-backslash", EBADMSG, "a\\..\\..\\b: its name leads to a folder above"},
    {"absolute-path", EBADMSG, "/etc/passwd: its name is an absolute path"},
    {"absolute-path-of-network", EBADMSG, "\\\\host\\share\\a: its name is an absolute path"},
    {"drive-path", EBADMSG, "C:/a: its name begins with a drive"},
    {"drive-path-with-backslash", EBADMSG, "c:\\a: its name begins with a drive"},
    {"zero-byte-in-name", EBADMSG, "item 2: a zero byte in its name"},
    {"name-is-no-utf8", EBADMSG, "item 2: its name isn't the UTF-8 that it is said to be"},
    {"name-of-65535-characters", EFBIG, "item 2: its name has more bytes than the limit of 4096"},
    {"thousand-nested-folders", EFBIG, "item 2: deeper in folders than the limit of 256"},

    {"stored-sizes-differ", EBADMSG, "a: is stored, but its two sizes differ"},
    {"size-too-small", EBADMSG, "a: can't read: longer than the directory says"},
    {"size-too-large", EBADMSG, "a: can't read: shorter than the directory says"},
    {"size-zero", EBADMSG, "a: can't read: longer than the directory says"},
    {"packed-size-too-small", EBADMSG, "a: can't read: its compressed data is damaged"},
    {"deflate-without-data", EBADMSG, "a: can't read: its compressed data is damaged"},
    {"checksum-wrong", EBADMSG, "a: can't read: its checksum is wrong"},
    {"deflate-damaged", EBADMSG, "a: can't read: its compressed data is damaged"},
    {"encrypted", ENOTSUP, "a: is encrypted"},
    {"method-lzma", ENOTSUP, "a: has compression method 14; Store and Deflate alone are read"},
    {"bomb-by-its-own-account", EFBIG,
     "a: the ratio of its size to its compressed size is above the limit of 1000"},
    {"part-of-17-GiB", EFBIG, "a: its size in bytes is above the limit of 17179869184"},
};

void readAll(const std::filesystem::path& path) {
    ZipPackage package(path);
    package.open(OpenMode::ReadOnly);
    rest(*package.getContentTypeInputStream());
    for (auto* part : package.getParts())
        content(*part);
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

/// Milliseconds of the processor, which other processes don't lengthen.
double processorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

#ifdef __SANITIZE_ADDRESS__ // slower, and keeps freed memory for a while
constexpr double MOST_TIME = 1000;
constexpr long MOST_MEMORY = 512L * 1024L;
#else
constexpr double MOST_TIME = 100;
constexpr long MOST_MEMORY = 64L * 1024L;
#endif

TEST(HostileArchives, areRefusedSoonAndWithoutSpendingMemory) {
    const std::filesystem::path folder = OPCMODEL_HOSTILE_ARCHIVES;
    std::set<std::string> tested;
    for (const Case& c : CASES) {
        const auto path = folder / (std::string(c.archive) + ".zip");
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
        const long memoryBefore = memory("VmRSS:");
        const double start = processorTime();
        EXPECT_TRUE(fails(c.code, path.string() + ": " + c.message, [&] { readAll(path); })) << c.archive;
        EXPECT_LT(processorTime() - start, MOST_TIME) << c.archive;
        EXPECT_LT(memory("VmHWM:") - memoryBefore, MOST_MEMORY) << c.archive;
        tested.insert(path.filename());
    }
    for (const auto& file : std::filesystem::directory_iterator(folder))
        EXPECT_EQ(tested.count(file.path().filename()), 1U) << file.path() << " isn't tested";
    EXPECT_GE(tested.size(), 40U);
}

} // namespace
