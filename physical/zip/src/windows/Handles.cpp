#include "Handles.hpp"

#include <fcntl.h>
#include <io.h>

#include <cerrno>

namespace opc::physical::zip {

HANDLE handleOf(const FileDescriptor& file) noexcept {
    return reinterpret_cast<HANDLE>(::_get_osfhandle(file.get()));
}

int adopt(HANDLE handle, FileDescriptor& file) noexcept {
    if (handle == INVALID_HANDLE_VALUE) {
        file = FileDescriptor();
        return errorOf(false);
    }
    const int descriptor =
        ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0)
        ::CloseHandle(handle);
    file = FileDescriptor(descriptor);
    return descriptor < 0 ? EMFILE : 0;
}

int toErrorNumber(DWORD error) noexcept {
    switch (error) {
    case ERROR_SUCCESS:
        return 0;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
        return ENOENT;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return EEXIST;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_UNABLE_TO_REMOVE_REPLACED:
    case ERROR_BUSY:
        return EBUSY;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
        return EACCES;
    case ERROR_WRITE_PROTECT:
        return EROFS;
    case ERROR_DIRECTORY:
        return ENOTDIR;
    case ERROR_DIR_NOT_EMPTY:
        return ENOTEMPTY;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return ENOSPC;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return ENOMEM;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    case ERROR_FILENAME_EXCED_RANGE:
        return ENAMETOOLONG;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION:
        return ENOTSUP;
    case ERROR_INVALID_HANDLE:
        return EBADF;
    case ERROR_INVALID_PARAMETER:
        return EINVAL;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
        return EPIPE;
    default:
        return EIO;
    }
}

int errorOf(bool succeeded) noexcept {
    return succeeded ? 0 : toErrorNumber(::GetLastError());
}

} // namespace opc::physical::zip
