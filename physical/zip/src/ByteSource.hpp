#pragma once

#include "FileDescriptor.hpp"

#include <opc/physical/FileState.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace opc::physical::zip {

/// Bytes with random access.
class OPC_ZIP_EXPORT ByteSource {
public:
    virtual ~ByteSource() = default;

    virtual std::uint64_t size() const noexcept = 0;

    /// Reads up to `count` bytes; fewer only at the end.
    /// @return an error number, 0 for success
    /// @throws what the application's own source throws
    virtual int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) = 0;

    /// The bytes in memory, valid until they change; null if memory doesn't have all of them.
    virtual const unsigned char* inMemory() const noexcept { return nullptr; }

    /// The state of the file that the bytes come from, when it was opened; of no file if there is none.
    virtual FileState state() const noexcept { return {}; }

    /// The file that holds exactly these bytes; null if there is none.
    virtual const FileDescriptor* asFile() const noexcept { return nullptr; }
};

/// Bytes whose reading costs a call, at least. A window serves small reads that continue after the last one, and those at
/// the end, where the directory usually is.
class OPC_ZIP_EXPORT WindowedBytes : public ByteSource {
public:
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) override;

protected:
    /// Does the same without the window.
    virtual int fetch(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) = 0;

private:
    static constexpr std::size_t LARGEST_WINDOW = 66 << 10; ///< room for the longest end record
    static constexpr std::size_t READ_AHEAD = 16 << 10;

    int moveWindow(std::uint64_t offset, std::size_t count);

    std::unique_ptr<unsigned char[]> window{new unsigned char[LARGEST_WINDOW]};
    std::uint64_t windowStart = 0;
    std::size_t windowSize = 0;
    std::uint64_t lastEnd = 0; ///< the end of the last read
};

class FileBytes : public WindowedBytes {
public:
    FileBytes(FileDescriptor file, const FileState& whenOpened)
        : file(std::move(file)), whenOpened(whenOpened) {}

    FileState state() const noexcept override { return whenOpened; }
    std::uint64_t size() const noexcept override { return whenOpened.size; }
    const FileDescriptor* asFile() const noexcept override { return &file; }

private:
    int fetch(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) override {
        return file.readAt(offset, buffer, count, got);
    }

    FileDescriptor file;
    FileState whenOpened;
};

class OPC_ZIP_EXPORT MemoryBytes : public ByteSource {
public:
    /// @param whenRead  the state of the file that they were read from, if any
    MemoryBytes(std::shared_ptr<const unsigned char> bytes, std::size_t length,
                const FileState& whenRead = {}) noexcept
        : bytes(std::move(bytes)), length(length), whenRead(whenRead) {}

    FileState state() const noexcept override { return whenRead; }
    std::uint64_t size() const noexcept override { return length; }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;
    const unsigned char* inMemory() const noexcept override { return bytes.get(); }

private:
    std::shared_ptr<const unsigned char> bytes;
    std::size_t length;
    FileState whenRead;
};

} // namespace opc::physical::zip
