#include "zip/src/FileDescriptor.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
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

#ifdef __linux__
std::uint64_t FileDescriptor::copyAt(std::uint64_t offset, const FileDescriptor& source,
                                     std::uint64_t sourceOffset, std::uint64_t count) const noexcept {
    constexpr std::uint64_t AT_ONCE = 1U << 30;
    std::uint64_t done = 0;
    while (done < count) {
        auto from = static_cast<off64_t>(sourceOffset + done);
        auto to = static_cast<off64_t>(offset + done);
        const ssize_t n = ::copy_file_range(source.fd, &from, fd, &to,
                                            static_cast<std::size_t>(std::min(count - done, AT_ONCE)), 0);
        if (n <= 0)
            break;
        done += static_cast<std::uint64_t>(n);
    }
    return done;
}
#else
std::uint64_t FileDescriptor::copyAt(std::uint64_t /*offset*/, const FileDescriptor& /*source*/,
                                     std::uint64_t /*sourceOffset*/, std::uint64_t /*count*/) const noexcept {
    return 0;
}
#endif

int FileDescriptor::sync() const noexcept {
#ifdef F_FULLFSYNC // where fsync leaves data in the drive's cache
    if (::fcntl(fd, F_FULLFSYNC) == 0)
        return 0;
#endif
    return ::fsync(fd) == 0 ? 0 : errno;
}

} // namespace opc::physical::zip
