#include "FileDescriptor.hpp"

#include <unistd.h>

#include <cerrno>

namespace opc::physical::zip {

FileDescriptor::~FileDescriptor() {
    if (fd >= 0)
        ::close(fd);
}

int FileDescriptor::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                           std::size_t& got) const noexcept {
    got = 0;
    while (got < count) {
        const ssize_t n = ::pread(fd, buffer + got, count - got, static_cast<off_t>(offset + got));
        if (n == 0)
            break;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        got += static_cast<std::size_t>(n);
    }
    return 0;
}

int FileDescriptor::writeAt(std::uint64_t offset, const unsigned char* buffer,
                            std::size_t count) const noexcept {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t n = ::pwrite(fd, buffer + done, count - done, static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        done += static_cast<std::size_t>(n);
    }
    return 0;
}

} // namespace opc::physical::zip
