#include "zip/src/SystemFiles.hpp"

#include "Handles.hpp"

#include <cerrno>
#include <random>
#include <string>

namespace opc::physical::zip {

namespace {

constexpr DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr int MOST_TRIES = 100;

std::uint64_t join(DWORD high, DWORD low) noexcept {
    return std::uint64_t{high} << 32 | low;
}

FileStatus toFileStatus(const BY_HANDLE_FILE_INFORMATION& file, DWORD type) noexcept {
    constexpr std::int64_t TICKS = 10'000'000;     ///< in a second
    constexpr std::int64_t EPOCH = 11'644'473'600; ///< seconds from 1601 to 1970
    const auto written = static_cast<std::int64_t>(
        join(file.ftLastWriteTime.dwHighDateTime, file.ftLastWriteTime.dwLowDateTime));
    const bool isFolder = (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const FileKind other = type == FILE_TYPE_DISK ? FileKind::Regular : FileKind::Other;
    return {isFolder ? FileKind::Folder : other,
            {file.dwVolumeSerialNumber, join(file.nFileIndexHigh, file.nFileIndexLow),
             join(file.nFileSizeHigh, file.nFileSizeLow), written / TICKS - EPOCH, written % TICKS * 100}};
}

/// The pipes and devices of the system have no such information.
int readStatus(HANDLE handle, FileStatus& status) noexcept {
    const DWORD type = ::GetFileType(handle);
    if (type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE) {
        status = {};
        return 0;
    }
    BY_HANDLE_FILE_INFORMATION file{};
    const int error = errorOf(::GetFileInformationByHandle(handle, &file) != 0);
    if (error == 0)
        status = toFileStatus(file, type);
    return error;
}

/// Folders can be opened, too.
HANDLE open(const std::filesystem::path& path, DWORD access) noexcept {
    return ::CreateFileW(path.c_str(), access, SHARED, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                         nullptr);
}

} // namespace

int openForReading(const std::filesystem::path& path, FileDescriptor& file) noexcept {
    return adopt(open(path, GENERIC_READ), file);
}

int openTemporary(const std::filesystem::path& folder, FileDescriptor& file) {
    std::random_device random;
    int error = EEXIST;
    for (int tried = 0; error == EEXIST && tried < MOST_TRIES; ++tried) {
        const std::filesystem::path path = folder / (".opcmodel-" + std::to_string(random()));
        error =
            adopt(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_TEMPORARY | FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE,
                                nullptr),
                  file);
    }
    return error;
}

int readStatus(const std::filesystem::path& path, FileStatus& status) noexcept {
    FileDescriptor file;
    if (const int error = adopt(open(path, FILE_READ_ATTRIBUTES), file))
        return error;
    return readStatus(handleOf(file), status);
}

int readStatus(const FileDescriptor& file, FileStatus& status) noexcept {
    return readStatus(handleOf(file), status);
}

int checkWritable(const std::filesystem::path& path) noexcept {
    FileDescriptor file;
    return adopt(open(path, GENERIC_WRITE), file);
}

} // namespace opc::physical::zip
