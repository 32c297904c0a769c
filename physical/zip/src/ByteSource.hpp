#pragma once

#include "FileDescriptor.hpp"
#include "FileIdentity.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace opc::physical::zip {

/// Bytes that can be read at any place.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    virtual std::uint64_t size() const noexcept = 0;

    /// Reads up to `count` bytes; fewer only at the end.
    /// @return an error number, 0 for success
    virtual int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                       std::size_t& got) noexcept = 0;

    /// The bytes in memory, good until they change; null if they don't lie there as a whole.
    virtual const unsigned char* inMemory() const noexcept { return nullptr; }

    /// The file that holds these bytes and no others; null if there is none.
    virtual const FileDescriptor* asFile() const noexcept { return nullptr; }
};

/// The bytes of a file. Small reads that go on where the last one has ended, or a little behind, are served
/// from a window.
class FileBytes : public ByteSource {
public:
    FileBytes(FileDescriptor descriptor, const FileIdentity& fileIdentity) noexcept
        : file(std::move(descriptor)), whenOpened(fileIdentity) {}

    /// Of the file when it was opened.
    const FileIdentity& identity() const noexcept { return whenOpened; }

    std::uint64_t size() const noexcept override { return static_cast<std::uint64_t>(whenOpened.size); }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;
    const FileDescriptor* asFile() const noexcept override { return &file; }

private:
    FileDescriptor file;
    FileIdentity whenOpened;
    std::array<unsigned char, 16384> window{};
    std::uint64_t windowStart = 0;
    std::size_t windowSize = 0;
    std::uint64_t lastEnd = 0; ///< of the last read
};

class MemoryBytes : public ByteSource {
public:
    explicit MemoryBytes(std::shared_ptr<const std::vector<unsigned char>> content) noexcept
        : bytes(std::move(content)) {}

    std::uint64_t size() const noexcept override { return bytes->size(); }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;
    const unsigned char* inMemory() const noexcept override { return bytes->data(); }

private:
    std::shared_ptr<const std::vector<unsigned char>> bytes;
};

} // namespace opc::physical::zip
