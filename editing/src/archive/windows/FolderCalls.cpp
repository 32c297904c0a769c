#include "archive/FolderCalls.hpp"

#include "archive/FileNames.hpp"
#include "zip/src/SystemFiles.hpp"
#include "zip/src/windows/Handles.hpp"

#include <winternl.h>

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <string_view>

namespace opc::editing::archive {

using physical::zip::adopt;
using physical::zip::errorOf;
using physical::zip::FileKind;
using physical::zip::FileStatus;
using physical::zip::handleOf;
using physical::zip::toErrorNumber;

namespace {

constexpr ULONG SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr ACCESS_MASK TO_LIST = FILE_LIST_DIRECTORY | FILE_TRAVERSE | FILE_READ_ATTRIBUTES | SYNCHRONIZE;

/// Whether every program finds the file by the name. A colon would lead to a stream of another file, a backslash into
/// another folder.
bool isUsable(std::string_view name) {
    const auto isForbidden = [](unsigned char c) {
        return c < ' ' ||
               std::string_view("<>:\"/\\|?*").find(static_cast<char>(c)) != std::string_view::npos;
    };
    return !name.empty() && name.back() != '.' && name.back() != ' ' && !isDeviceName(name) &&
           std::none_of(name.begin(), name.end(), isForbidden);
}

/// Opens or makes what has that name in an open folder. A link isn't followed: the link itself is opened.
int openIn(const FileDescriptor& folder, const std::string& name, ACCESS_MASK access, ULONG disposition,
           ULONG options, FileDescriptor& file) {
    if (!isUsable(name))
        return EINVAL;
    std::wstring wide = std::filesystem::u8path(name).native();
    UNICODE_STRING text{static_cast<USHORT>(wide.size() * sizeof(wchar_t)),
                        static_cast<USHORT>(wide.size() * sizeof(wchar_t)), wide.data()};
    OBJECT_ATTRIBUTES attributes{};
    attributes.Length = sizeof attributes;
    attributes.RootDirectory = handleOf(folder);
    attributes.ObjectName = &text;
    attributes.Attributes = OBJ_CASE_INSENSITIVE;
    IO_STATUS_BLOCK outcome{};
    HANDLE handle = INVALID_HANDLE_VALUE;
    const NTSTATUS status = ::NtCreateFile(
        &handle, access | SYNCHRONIZE, &attributes, &outcome, nullptr, FILE_ATTRIBUTE_NORMAL, SHARED,
        disposition, options | FILE_SYNCHRONOUS_IO_NONALERT | FILE_OPEN_REPARSE_POINT, nullptr, 0);
    return status < 0 ? toErrorNumber(::RtlNtStatusToDosError(status)) : adopt(handle, file);
}

bool isLink(const FileDescriptor& file) {
    FILE_ATTRIBUTE_TAG_INFO info{};
    return ::GetFileInformationByHandleEx(handleOf(file), FileAttributeTagInfo, &info, sizeof info) != 0 &&
           (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

int removeIn(const FileDescriptor& folder, const std::string& name, ULONG kind) {
    FileDescriptor file;
    if (const int error = openIn(folder, name, DELETE, FILE_OPEN, kind, file))
        return error;
    FILE_DISPOSITION_INFO disposition{};
    disposition.DeleteFile = TRUE;
    return errorOf(::SetFileInformationByHandle(handleOf(file), FileDispositionInfo, &disposition,
                                                sizeof disposition) != 0);
}

} // namespace

int openFolder(const std::filesystem::path& path, FileDescriptor& folder) {
    const HANDLE handle = ::CreateFileW(path.c_str(), TO_LIST, SHARED, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (const int error = adopt(handle, folder))
        return error;
    EntryStatus status;
    const int error = readStatusOf(folder, status);
    return error == 0 && status.kind != EntryKind::Folder ? ENOTDIR : error;
}

int openFolderIn(const FileDescriptor& above, const std::string& name, FileDescriptor& folder) {
    const int error = openIn(above, name, TO_LIST, FILE_OPEN, FILE_DIRECTORY_FILE, folder);
    return error == 0 && isLink(folder) ? ELOOP : error;
}

int makeFolderIn(const FileDescriptor& above, const std::string& name) {
    FileDescriptor made;
    return openIn(above, name, TO_LIST, FILE_CREATE, FILE_DIRECTORY_FILE, made);
}

int removeFolderIn(const FileDescriptor& above, const std::string& name) {
    return removeIn(above, name, FILE_DIRECTORY_FILE);
}

int openFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file) {
    const int error = openIn(folder, name, FILE_GENERIC_READ, FILE_OPEN, 0, file);
    return error == 0 && isLink(file) ? ELOOP : error;
}

int makeFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file) {
    return openIn(folder, name, FILE_GENERIC_WRITE, FILE_CREATE, FILE_NON_DIRECTORY_FILE, file);
}

int removeFileIn(const FileDescriptor& folder, const std::string& name) {
    return removeIn(folder, name, FILE_NON_DIRECTORY_FILE);
}

int readStatusOf(const FileDescriptor& file, EntryStatus& status) {
    FileStatus read;
    if (const int error = physical::zip::readStatus(file, read))
        return error;
    const EntryKind other = read.kind == FileKind::Folder ? EntryKind::Folder : EntryKind::Other;
    const EntryKind kind = read.kind == FileKind::Regular ? EntryKind::File : other;
    status = {isLink(file) ? EntryKind::Other : kind, read.state.size};
    return 0;
}

int readStatusIn(const FileDescriptor& folder, const std::string& name, EntryStatus& status) {
    FileDescriptor file;
    if (const int error = openIn(folder, name, FILE_READ_ATTRIBUTES, FILE_OPEN, 0, file))
        return error;
    return readStatusOf(file, status);
}

int listNames(const FileDescriptor& folder, std::vector<std::string>& names) {
    std::vector<std::uint64_t> block(8192); // aligned as the system wants it
    FILE_INFO_BY_HANDLE_CLASS kind = FileIdBothDirectoryRestartInfo;
    while (::GetFileInformationByHandleEx(handleOf(folder), kind, block.data(),
                                          static_cast<DWORD>(block.size() * sizeof block[0])) != 0) {
        kind = FileIdBothDirectoryInfo;
        const auto* entry = reinterpret_cast<const unsigned char*>(block.data());
        for (bool isLast = false; !isLast;) {
            const auto& info = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(entry);
            const std::wstring_view name(info.FileName, info.FileNameLength / sizeof(wchar_t));
            if (name != L"." && name != L"..")
                names.push_back(std::filesystem::path(name).u8string());
            isLast = info.NextEntryOffset == 0;
            entry += info.NextEntryOffset;
        }
    }
    const DWORD error = ::GetLastError();
    return error == ERROR_NO_MORE_FILES ? 0 : toErrorNumber(error);
}

} // namespace opc::editing::archive
