#include "ReplacementFile.hpp"

#include "Failure.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace opc::physical::zip {

namespace fs = std::filesystem;

namespace {

fs::path resolve(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

/// Whether `path` still leads to the file of `fd`.
bool isSameFile(int fd, const fs::path& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(fd, &open) == 0 && ::lstat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

ReplacementFile::ReplacementFile(const fs::path& path, std::string archive)
    : target(resolve(path)), temporary(folder() / ("." + target.filename().string() + ".opcmodel-new")),
      place(std::move(archive)) {
    while (!create())
        removeAbandoned();
}

ReplacementFile::~ReplacementFile() {
    if (file.isOpen() && !inPlace)
        ::unlink(temporary.c_str());
}

fs::path ReplacementFile::folder() const {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

/// @return false if another file stands in the way
bool ReplacementFile::create() {
    // A file that replaces another one is nobody else's to read before it has that one's permissions.
    struct stat old {};
    const mode_t mode = ::stat(target.c_str(), &old) == 0 ? 0600 : 0666;
    const int fd = ::open(temporary.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
    if (fd < 0) {
        if (errno == EEXIST)
            return false;
        failSystem(place, "can't make a file in its folder", errno);
    }
    FileDescriptor made(fd);
    // Between its creation and its lock somebody may have taken the file for an abandoned one.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0 || !isSameFile(fd, temporary))
        return false;
    file = std::move(made);
    return true;
}

void ReplacementFile::removeAbandoned() {
    const FileDescriptor found(::open(temporary.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!found.isOpen() && errno == ENOENT)
        return;
    if (found.isOpen()) {
        if (::flock(found.get(), LOCK_EX | LOCK_NB) != 0)
            failSystem(place, "is being saved by another process", EBUSY);
        if (!isSameFile(found.get(), temporary))
            return;
    }
    if (::unlink(temporary.c_str()) != 0 && errno != ENOENT)
        failSystem(place, "can't remove an abandoned temporary file", errno);
}

int ReplacementFile::writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept {
    return file.writeAt(offset, buffer, count);
}

void ReplacementFile::takeAttributes() {
    struct stat old {};
    if (::stat(target.c_str(), &old) != 0)
        return;
    // Only root may give a file away: for others the new file is their own, as with every editor.
    if (::fchown(file.get(), old.st_uid, old.st_gid) != 0 && errno != EPERM)
        failSystem(place, "can't keep the owner", errno);
    if (::fchmod(file.get(), old.st_mode & 07777U) != 0)
        failSystem(place, "can't keep the permissions", errno);
}

void ReplacementFile::putInPlace() {
    takeAttributes();
    if (::fsync(file.get()) != 0)
        failSystem(place, "can't sync the new archive", errno);
    if (::rename(temporary.c_str(), target.c_str()) != 0)
        failSystem(place, "can't replace the archive", errno);
    inPlace = true;
}

FileIdentity ReplacementFile::identity() const {
    struct stat status {};
    return ::fstat(file.get(), &status) == 0 ? FileIdentity(status) : FileIdentity();
}

void ReplacementFile::syncFolder() {
    const FileDescriptor opened(::open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems can't sync a folder, and say so with EINVAL.
    if (!opened.isOpen() || (::fsync(opened.get()) != 0 && errno != EINVAL))
        failSystem(place, "can't sync its folder", errno);
}

} // namespace opc::physical::zip
