#include "archive/FolderCalls.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace opc::editing::archive {

namespace {

constexpr int FOLDER = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

int errorOf(int result) {
    return result < 0 ? errno : 0;
}

int keep(int opened, FileDescriptor& file) {
    const int error = errorOf(opened);
    file = FileDescriptor(opened);
    return error;
}

EntryStatus toEntryStatus(const struct stat& status) {
    const EntryKind other = S_ISDIR(status.st_mode) ? EntryKind::Folder : EntryKind::Other;
    return {S_ISREG(status.st_mode) ? EntryKind::File : other, static_cast<std::uint64_t>(status.st_size)};
}

} // namespace

int openFolder(const std::filesystem::path& path, FileDescriptor& folder) {
    return keep(::open(path.c_str(), FOLDER), folder);
}

int openFolderIn(const FileDescriptor& above, const std::string& name, FileDescriptor& folder) {
    return keep(::openat(above.get(), name.c_str(), FOLDER | O_NOFOLLOW), folder);
}

int makeFolderIn(const FileDescriptor& above, const std::string& name) {
    return errorOf(::mkdirat(above.get(), name.c_str(), 0777));
}

int removeFolderIn(const FileDescriptor& above, const std::string& name) {
    return errorOf(::unlinkat(above.get(), name.c_str(), AT_REMOVEDIR));
}

int openFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file) {
    return keep(::openat(folder.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC), file);
}

int makeFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file) {
    constexpr int FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    return keep(::openat(folder.get(), name.c_str(), FLAGS, 0666), file);
}

int removeFileIn(const FileDescriptor& folder, const std::string& name) {
    return errorOf(::unlinkat(folder.get(), name.c_str(), 0));
}

int readStatusOf(const FileDescriptor& file, EntryStatus& status) {
    struct stat read {};
    const int error = errorOf(::fstat(file.get(), &read));
    status = toEntryStatus(read);
    return error;
}

int readStatusIn(const FileDescriptor& folder, const std::string& name, EntryStatus& status) {
    struct stat read {};
    const int error = errorOf(::fstatat(folder.get(), name.c_str(), &read, AT_SYMLINK_NOFOLLOW));
    status = toEntryStatus(read);
    return error;
}

int listNames(const FileDescriptor& folder, std::vector<std::string>& names) {
    FileDescriptor read; // a descriptor of its own, which reads from the beginning
    if (const int error = openFolderIn(folder, ".", read))
        return error;
    const std::unique_ptr<DIR, CloseFolder> opened(::fdopendir(::dup(read.get())));
    if (!opened)
        return errno;
    for (errno = 0; const dirent* entry = ::readdir(opened.get()); errno = 0) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    return errno;
}

} // namespace opc::editing::archive
