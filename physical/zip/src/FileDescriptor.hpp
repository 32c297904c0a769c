#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace opc::physical::zip {

/// Owns a file descriptor. Reading and writing return an error number, 0 for success, and throw nothing.
class OPC_ZIP_EXPORT FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) noexcept : fd(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd, other.fd);
        return *this;
    }
    ~FileDescriptor();

    bool isOpen() const noexcept { return fd >= 0; }
    int get() const noexcept { return fd; }

    /// Reads up to `count` bytes; fewer only at the end of the file.
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) const noexcept;

    /// Writes exactly `count` bytes.
    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) const noexcept;

    /// Copies up to `count` bytes of another file within the system.
    /// @return how many; fewer at the end of that file, and if the system can't copy
    std::uint64_t copyAt(std::uint64_t offset, const FileDescriptor& source, std::uint64_t sourceOffset,
                         std::uint64_t count) const noexcept;

    /// Makes what has been written last a loss of power.
    int sync() const noexcept;

private:
    int fd;
};

} // namespace opc::physical::zip
