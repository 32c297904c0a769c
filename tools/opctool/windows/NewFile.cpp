#include "NewFile.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace opctool {

// Who may read a file follows from its folder.
NewFile::NewFile(const std::string& name, Readers /*readers*/, bool replace)
    : finalPath(name), path(replace ? name + "." + std::to_string(::GetCurrentProcessId()) : name),
      descriptor(::_wopen(std::filesystem::path(path).c_str(),
                          _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE)) {
    if (descriptor < 0)
        fail();
}

NewFile::~NewFile() {
    if (descriptor >= 0)
        ::_close(descriptor);
    if (!kept)
        ::DeleteFileW(std::filesystem::path(path).c_str());
}

void NewFile::write(const std::vector<unsigned char>& bytes) const {
    constexpr std::size_t MOST_AT_ONCE = 1U << 30;
    for (std::size_t done = 0; done < bytes.size();) {
        const int count = ::_write(descriptor, bytes.data() + done,
                                   static_cast<unsigned>(std::min(bytes.size() - done, MOST_AT_ONCE)));
        if (count < 0)
            fail();
        done += static_cast<std::size_t>(count);
    }
    if (::_commit(descriptor) != 0)
        fail();
}

void NewFile::keep() {
    ::_close(descriptor); // an open file can't be moved
    descriptor = -1;
    if (path != finalPath &&
        ::MoveFileExW(std::filesystem::path(path).c_str(), std::filesystem::path(finalPath).c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        errno = EACCES;
        fail();
    }
    kept = true;
}

} // namespace opctool
