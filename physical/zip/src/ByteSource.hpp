#pragma once

#include "FileDescriptor.hpp"

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
};

/// The bytes of a file. Small reads go through a window: a directory of ZIP items is read in tiny steps.
class FileBytes : public ByteSource {
public:
    FileBytes(FileDescriptor descriptor, std::uint64_t length) noexcept
        : file(std::move(descriptor)), fileSize(length) {}

    std::uint64_t size() const noexcept override { return fileSize; }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;

private:
    FileDescriptor file;
    std::uint64_t fileSize;
    std::array<unsigned char, 16384> window{};
    std::uint64_t windowStart = 0;
    std::size_t windowSize = 0;
};

class MemoryBytes : public ByteSource {
public:
    explicit MemoryBytes(std::shared_ptr<const std::vector<unsigned char>> content) noexcept
        : bytes(std::move(content)) {}

    std::uint64_t size() const noexcept override { return bytes->size(); }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;

private:
    std::shared_ptr<const std::vector<unsigned char>> bytes;
};

} // namespace opc::physical::zip
