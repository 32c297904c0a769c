#include "zip/src/SystemFiles.hpp"

#include "SignalsHeld.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace opc::physical::zip {

namespace {

FileKind kindOf(mode_t mode) noexcept {
    if (S_ISDIR(mode))
        return FileKind::Folder;
    return S_ISREG(mode) ? FileKind::Regular : FileKind::Other;
}

FileStatus toFileStatus(const struct stat& status) noexcept {
#ifdef __APPLE__
    const timespec& written = status.st_mtimespec;
#else
    const timespec& written = status.st_mtim;
#endif
    return {kindOf(status.st_mode),
            {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
             static_cast<std::uint64_t>(status.st_size), written.tv_sec, written.tv_nsec}};
}

int errorOf(int result) noexcept {
    return result < 0 ? errno : 0;
}

/// @return a descriptor, or -1 where the system or the file system can't make a file without a name
int openNameless([[maybe_unused]] const std::filesystem::path& folder) noexcept {
#ifdef O_TMPFILE
    return ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
#else
    errno = EOPNOTSUPP;
    return -1;
#endif
}

} // namespace

int openForReading(const std::filesystem::path& path, FileDescriptor& file) noexcept {
    file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return errorOf(file.get());
}

int openTemporary(const std::filesystem::path& folder, FileDescriptor& file) {
    int made = openNameless(folder);
    if (made < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        std::string name = (folder / ".opcmodel-XXXXXX").string();
        const SignalsHeld held;
        made = ::mkostemp(name.data(), O_CLOEXEC);
        if (made >= 0)
            ::unlink(name.c_str());
    }
    const int error = errorOf(made);
    file = FileDescriptor(made);
    return error;
}

int readStatus(const std::filesystem::path& path, FileStatus& status) noexcept {
    struct stat read {};
    const int error = errorOf(::stat(path.c_str(), &read));
    if (error == 0)
        status = toFileStatus(read);
    return error;
}

int readStatus(const FileDescriptor& file, FileStatus& status) noexcept {
    struct stat read {};
    const int error = errorOf(::fstat(file.get(), &read));
    if (error == 0)
        status = toFileStatus(read);
    return error;
}

int checkWritable(const std::filesystem::path& path) noexcept {
    return errorOf(::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
}

} // namespace opc::physical::zip
