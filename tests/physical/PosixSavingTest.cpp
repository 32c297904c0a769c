#include "PhysicalSupport.hpp"
#include "SystemCalls.hpp"
#include "support/RawZip.hpp"

#include "support/Texts.hpp"

#include <opc/core/Text.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace {

namespace fs = std::filesystem;

using namespace opc::test;

/// What only a system has that knows signals, permissions and locks of POSIX.
class PosixSaving : public FileTest {};

/// Limits all files to `size` while it lives, as if the disk were full.
class FullDisk {
public:
    explicit FullDisk(rlim_t size) : oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit now{size, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
    }

private:
    rlimit old{};
    void (*oldHandler)(int);
};

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST_F(PosixSaving, keepsTheOldFileWholeWhenTheDiskIsFull) {
    const Bytes old = makeZip({stored("a", noise(400000))});
    writeFile(path, old);
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", noise(500000));
    for (const rlim_t size : {0U, 1U, 5000U, 300000U, 401000U, 900000U}) {
        const FullDisk disk(size);
        EXPECT_FAILS(EFBIG, path.string() + ": can't save: ", package.close(false)) << size;
        EXPECT_EQ(readFile(path), old);
        EXPECT_EQ(folder.count(), 1U);
        EXPECT_EQ(content(*find(package, u"/a")), noise(400000)) << "still open";
    }
    package.close(false);
    EXPECT_TRUE(othersAccept(path));
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(content(*find(package, u"/b")), noise(500000));
}

TEST_F(PosixSaving, refusesAPartWhoseWritingHasFailed) {
    ZipOptions options;
    options.temporaryFolder = folder / "";
    ZipPackage package(Bytes{}, options);
    package.open(OpenMode::CreateOnly);
    {
        const FullDisk disk(3000000);
        EXPECT_FAILS(EFBIG, "can't write to the temporary file",
                     create(package, u"/a", std::string(5000000, 'a')));
        EXPECT_FAILS(EIO, "a: writing it has failed", package.close(false));
    }
    create(package, u"/a", std::string(5000000, 'a'));
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(content(*find(package, u"/a")).size(), 5000000U);
}

TEST_F(PosixSaving, keepsPermissionsAndFollowsLinks) {
    const auto link = folder / "link.zip";
    fs::create_symlink("a.zip", link);
    const auto save = [&](OpenMode mode) {
        ZipPackage package(link);
        package.open(mode);
        create(package, u"/a", "alpha");
        package.close(false);
    };
    const mode_t mask = ::umask(027);
    writeFile(path, makeZip({}));
    for (const mode_t mode : {0600U, 0640U, 0777U}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        save(OpenMode::ReadWrite);
        EXPECT_EQ(modeOf(path), mode);
        EXPECT_TRUE(fs::is_symlink(link));
    }
    fs::remove(path);
    fs::remove(link);
    save(OpenMode::CreateOnly);
    EXPECT_EQ(modeOf(link), 0640U) << "a new file has what the process gives new files";
    ::umask(mask);
}

TEST_F(PosixSaving, removesWhatADeadProcessHasLeftButNotWhatALivingOneHolds) {
    const std::string names[] = {"a.zip",
                                 std::string(241, 'n'),
                                 std::string(242, 'n'),
                                 std::string(255, 'n'),
                                 "\u20AC" + std::string(252, 'n'),
                                 "nn" + repeated(std::string("\u20AC"), 84)};
    std::vector<std::string> temporaries;
    for (const std::string& name : names) {
        const fs::path archive = folder / name;
        writeFile(archive, makeZip({stored("a", "alpha")}));
        ZipPackage package(archive);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", "beta");
        SystemCalls::before = [&](const std::string& call, int) {
            for (const fs::directory_entry& entry : fs::directory_iterator(folder.path()))
                if (call == "fsync" && entry.path() != archive)
                    temporaries.push_back(entry.path().filename());
            return call == "renameat" ? EIO : 0;
        };
        EXPECT_FAILS(EIO, "can't replace the archive", package.close(false));
        SystemCalls::before = nullptr;
        EXPECT_EQ(folder.count(), 1U) << "nothing is left";
        ASSERT_FALSE(temporaries.empty());
        const fs::path temporary = folder / temporaries.back();
        EXPECT_EQ(opc::toUDEString(opc::toString(temporaries.back(), true)), temporaries.back()) << "UTF-8";

        writeFile(temporary, Bytes(100, 'x'));
        const int other = ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(other, LOCK_EX), 0);
        EXPECT_FAILS(EBUSY, name + ": is being saved by another process", package.close(false));
        EXPECT_TRUE(fs::exists(temporary));
        ::close(other);
        package.close(false);
        EXPECT_EQ(folder.count(), 1U);
        EXPECT_EQ(readZip(readFile(archive)).size(), 2U);
        fs::remove(archive);
    }
    std::sort(temporaries.begin(), temporaries.end());
    EXPECT_EQ(std::unique(temporaries.begin(), temporaries.end()), temporaries.end()) << "each has its own";
}

TEST_F(PosixSaving, goesOnWhereThereAreNoLocks) {
    writeFile(path, makeZip({stored("a", "alpha")}));
    writeFile(folder / ".a.zip.opcmodel-new", Bytes(100, 'x'));
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", std::to_string(error));
        SystemCalls::before = [error](const std::string& call, int) { return call == "flock" ? error : 0; };
        package.close(false);
        SystemCalls::before = nullptr;
        EXPECT_EQ(folder.count(), 2U) << "what may be another's stays";
        EXPECT_EQ(readZip(readFile(path)).size(), 2U);
    }
}

TEST_F(PosixSaving, neverPutsInPlaceWhatAnotherOneIsWriting) {
    const Bytes old = makeZip({stored("a", "alpha")});
    writeFile(path, old);
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "beta");
    const fs::path temporary = folder / ".a.zip.opcmodel-new";
    SystemCalls::before = [&](const std::string& call, int) {
        if (call == "fsync" && fs::remove(temporary))
            writeFile(temporary, Bytes(100, 'x'));
        return 0;
    };
    EXPECT_FAILS(ESTALE, "somebody has taken the new one away", package.close(false));
    SystemCalls::before = nullptr;
    EXPECT_EQ(readFile(path), old);
    EXPECT_TRUE(fs::exists(temporary)) << "it is theirs";
    package.close(false);
    EXPECT_EQ(folder.count(), 1U);
}

TEST_F(PosixSaving, saysAtOpenWhatCannotBeOpened) {
    writeFile(folder / "file", makeZip({}));
    fs::create_directory(folder / "folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    struct Case {
        const char* name;
        OpenMode mode;
        int code;
    };
    const Case cases[] = {
        {"absent", OpenMode::ReadOnly, ENOENT},     {"absent", OpenMode::ReadWrite, ENOENT},
        {"absent/a", OpenMode::CreateOnly, ENOENT}, {"file/a", OpenMode::ReadOnly, ENOTDIR},
        {"file/a", OpenMode::CreateOnly, ENOTDIR},  {"folder", OpenMode::ReadOnly, EISDIR},
        {"folder", OpenMode::CreateOnly, EISDIR},   {"pipe", OpenMode::ReadOnly, EINVAL},
        {"pipe", OpenMode::CreateOnly, EINVAL},
    };
    for (const Case& c : cases) {
        ZipPackage package(folder / c.name);
        EXPECT_FAILS(c.code, (folder / c.name).string() + ": can't open", package.open(c.mode));
    }
}

/// The largest memory of the process so far, in KiB.
long peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(PosixSaving, takesNoMoreMemoryForALargePart) {
    constexpr std::size_t STEPS = 64;
    const std::string block = noise(1U << 20);
    const long before = peakMemory();
    ZipPackage package(path);
    package.open(OpenMode::CreateOnly);
    auto* part = package.createPart(u"/large", u"", PartInfo(CompressionType::SuperFast));
    auto* output = part->getOutputStream();
    for (std::size_t i = 0; i < STEPS; ++i)
        put(*output, block);
    package.close(false);
    package.open(OpenMode::ReadOnly);
    auto* input = package.getParts()[0]->getInputStream();
    std::string got(block.size(), '\0');
    std::uint64_t total = 0;
    while (!input->isDone())
        total += input->read(reinterpret_cast<unsigned char*>(got.data()), got.size());
    EXPECT_EQ(total, STEPS << 20);
#ifdef __SANITIZE_ADDRESS__ // keeps freed memory for a while
    constexpr long ALLOWED = 512L * 1024L;
#else
    constexpr long ALLOWED = 8L * 1024L;
#endif
    EXPECT_LT(peakMemory() - before, ALLOWED);
}

} // namespace
