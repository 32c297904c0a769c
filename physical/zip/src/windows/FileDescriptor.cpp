#include "zip/src/FileDescriptor.hpp"

#include "Handles.hpp"

#include <io.h>

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

namespace {

constexpr DWORD MOST_AT_ONCE = 1U << 30;

OVERLAPPED placeAt(std::uint64_t offset) noexcept {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

DWORD stepOf(std::size_t count) noexcept {
    return static_cast<DWORD>(std::min<std::size_t>(count, MOST_AT_ONCE));
}

} // namespace

FileDescriptor::~FileDescriptor() {
    if (fd >= 0)
        ::_close(fd);
}

int FileDescriptor::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                           std::size_t& got) const noexcept {
    got = 0;
    while (got < count) {
        OVERLAPPED place = placeAt(offset + got);
        DWORD n = 0;
        if (!::ReadFile(handleOf(*this), buffer + got, stepOf(count - got), &n, &place)) {
            const DWORD error = ::GetLastError();
            return error == ERROR_HANDLE_EOF ? 0 : toErrorNumber(error);
        }
        if (n == 0)
            break;
        got += n;
    }
    return 0;
}

int FileDescriptor::writeAt(std::uint64_t offset, const unsigned char* buffer,
                            std::size_t count) const noexcept {
    std::size_t done = 0;
    while (done < count) {
        OVERLAPPED place = placeAt(offset + done);
        DWORD n = 0;
        if (!::WriteFile(handleOf(*this), buffer + done, stepOf(count - done), &n, &place))
            return errorOf(false);
        done += n;
    }
    return 0;
}

std::uint64_t FileDescriptor::copyAt(std::uint64_t /*offset*/, const FileDescriptor& /*source*/,
                                     std::uint64_t /*sourceOffset*/, std::uint64_t /*count*/) const noexcept {
    return 0;
}

int FileDescriptor::sync() const noexcept {
    return errorOf(::FlushFileBuffers(handleOf(*this)) != 0);
}

} // namespace opc::physical::zip
