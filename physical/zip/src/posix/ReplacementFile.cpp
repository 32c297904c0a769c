#include "zip/src/ReplacementFile.hpp"

#include "FileAttributes.hpp"
#include "SignalsHeld.hpp"
#include "UnfinishedFile.hpp"
#include "zip/src/Failure.hpp"
#include "zip/src/FileDescriptor.hpp"
#include "zip/src/SystemFiles.hpp"
#include "zip/src/TemporaryName.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <utility>

namespace opc::physical::zip {

namespace fs = std::filesystem;

namespace {

/// The number of names that are tried. In a folder where everybody may create files, others can take the first ones;
/// the rest can't be guessed.
constexpr unsigned NAMES = 20;
constexpr unsigned FORETOLD_NAMES = 10;

#ifdef O_PATH
constexpr int FOLDER = O_PATH | O_DIRECTORY | O_CLOEXEC; // one that may be written but not read, too
#else
constexpr int FOLDER = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

unsigned randomNumber() {
    unsigned number = 0; // used if the system has none
    return ::getentropy(&number, sizeof number) < 0 ? 0 : number;
}

/// Syncs all of the file system that holds a file.
int syncAround([[maybe_unused]] const FileDescriptor& file) noexcept {
#ifdef __linux__
    return ::syncfs(file.get()) == 0 ? 0 : errno;
#else
    ::sync();
    return 0;
#endif
}

fs::path resolve(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

/// Many file systems don't have locks.
enum class Lock { Taken, HeldByOther, Unsupported };

Lock tryToLock(const FileDescriptor& file) {
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
        return Lock::Taken;
    return errno == EWOULDBLOCK ? Lock::HeldByOther : Lock::Unsupported;
}

class RenamedFile : public ReplacementFile {
public:
    RenamedFile(const fs::path& path, const std::string& place);
    RenamedFile(const RenamedFile&) = delete;
    RenamedFile& operator=(const RenamedFile&) = delete;
    ~RenamedFile() override;

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override {
        return file.writeAt(offset, buffer, count);
    }
    std::uint64_t copyAt(std::uint64_t offset, const FileDescriptor& source, std::uint64_t sourceOffset,
                         std::uint64_t count) noexcept override {
        return file.copyAt(offset, source, sourceOffset, count);
    }
    fs::path path() const override { return target.parent_path() / name; }
    void complete() override;
    void putInPlace() override;
    void syncFolder() override;
    FileState state() const override;

private:
    void open();
    bool create();
    bool removeAbandoned();
    FileDescriptor openAbandoned() const;
    bool isNamed(const FileDescriptor& opened) const;
    bool isStrangers(const FileDescriptor& opened) const;

    fs::path target;
    std::string place;
    FileDescriptor folder; ///< serves to find names, not to read
    std::string name;      ///< in the folder
    FileDescriptor file;
    UnfinishedFile unfinished;
    bool inPlace = false;
};

RenamedFile::RenamedFile(const fs::path& path, const std::string& place)
    : target(resolve(path)), place(place),
      folder(::open(target.has_parent_path() ? target.parent_path().c_str() : ".", FOLDER)) {
    if (!folder.isOpen())
        failSystem(place, "can't make a file in its folder", errno);
    open();
}

RenamedFile::~RenamedFile() {
    const SignalsHeld held;
    if (!inPlace && isNamed(file))
        ::unlinkat(folder.get(), name.c_str(), 0);
    unfinished.forget();
}

void RenamedFile::open() {
    const long most = ::fpathconf(folder.get(), _PC_NAME_MAX);
    for (unsigned tried = 0; tried < NAMES; ++tried) {
        name = temporaryName(target.filename().string(), tried < FORETOLD_NAMES ? tried : randomNumber(),
                             most > 0 ? static_cast<std::size_t>(most) : std::size_t{NAME_MAX});
        do {
            if (create())
                return;
        } while (removeAbandoned());
    }
    failSystem(place, "can't make a file in its folder", EEXIST);
}

/// @return false if another file has this name
bool RenamedFile::create() {
    // Before a replacement has the permissions of the file that it replaces, nobody else may read it.
    struct stat old {};
    const mode_t mode = ::stat(target.c_str(), &old) == 0 ? 0600 : 0666;
    const SignalsHeld held;
    FileDescriptor made(::openat(folder.get(), name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode));
    if (!made.isOpen()) {
        if (errno == EEXIST)
            return false;
        failSystem(place, "can't make a file in its folder", errno);
    }
    // Between creation and lock, somebody may have taken the file for an abandoned one.
    if (tryToLock(made) == Lock::HeldByOther || !isNamed(made))
        return false;
    file = std::move(made);
    unfinished.remember(folder.get(), name);
    return true;
}

/// @return false if it stays, because it can't be removed or perhaps isn't abandoned
bool RenamedFile::removeAbandoned() {
    const FileDescriptor found = openAbandoned();
    if (!found.isOpen())
        return errno == ENOENT;
    const Lock lock = tryToLock(found);
    if (lock == Lock::HeldByOther && !isStrangers(found))
        failSystem(place, "is being saved by another process", EBUSY);
    if (lock != Lock::Taken)
        return false;
    return !isNamed(found) || ::unlinkat(folder.get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

FileDescriptor RenamedFile::openAbandoned() const {
    constexpr int FLAGS = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    // For writing if possible: over a network, other files can't be locked.
    FileDescriptor found(::openat(folder.get(), name.c_str(), O_RDWR | FLAGS));
    if (!found.isOpen() && errno == EACCES)
        found = FileDescriptor(::openat(folder.get(), name.c_str(), O_RDONLY | FLAGS));
    return found;
}

/// Whether the name still belongs to that file.
bool RenamedFile::isNamed(const FileDescriptor& opened) const {
    struct stat open {};
    struct stat named {};
    return opened.isOpen() && ::fstat(opened.get(), &open) == 0 &&
           ::fstatat(folder.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

/// Whether somebody else has created the file in a folder that everybody may write to. Everybody could lock it there.
bool RenamedFile::isStrangers(const FileDescriptor& opened) const {
    struct stat status {};
    struct stat around {};
    return ::fstat(opened.get(), &status) == 0 && ::fstat(folder.get(), &around) == 0 &&
           (around.st_mode & S_ISVTX) != 0 && status.st_uid != ::geteuid();
}

void RenamedFile::complete() {
    takeAttributes(target, file.get(), place);
    if (const int error = file.sync())
        failSystem(place, "can't sync the new archive", error);
}

void RenamedFile::putInPlace() {
    const SignalsHeld held;
    if (!isNamed(file))
        fail(place, "can't replace the archive: somebody has taken the new one away", CHANGED_MEANWHILE);
    if (::renameat(folder.get(), name.c_str(), folder.get(), target.filename().c_str()) != 0)
        failSystem(place, "can't replace the archive", errno);
    unfinished.forget();
    inPlace = true;
}

FileState RenamedFile::state() const {
    FileStatus status;
    return readStatus(file, status) == 0 ? status.state : FileState();
}

void RenamedFile::syncFolder() {
    const FileDescriptor opened(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder that may be written but not read: `sync` covers it.
    const bool unreadable = !opened.isOpen() && errno == EACCES;
    const int error = unreadable ? syncAround(file) : opened.sync();
    if (error != 0 && error != EINVAL) // some file systems can't sync a folder, and report EINVAL
        failSystem(place, "can't sync its folder", error);
}

} // namespace

std::unique_ptr<ReplacementFile> ReplacementFile::make(const fs::path& path, const std::string& place) {
    return std::make_unique<RenamedFile>(path, place);
}

} // namespace opc::physical::zip
