#pragma once

#include "FileDescriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace opc::physical::zip {

/// A target for a new archive, with random access.
class ByteTarget {
public:
    virtual ~ByteTarget() = default;

    /// @return an error number, 0 for success
    virtual int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept = 0;

    /// Copies bytes of a file without reading them into memory, if the system can.
    /// @return how many bytes were copied; the caller must write the rest
    virtual std::uint64_t copyAt(std::uint64_t /*offset*/, const FileDescriptor& /*source*/,
                                 std::uint64_t /*sourceOffset*/, std::uint64_t /*count*/) noexcept {
        return 0;
    }
};

/// Collects small writes in a buffer before a target. Written bytes can still be changed, mostly in the buffer.
/// Operations that may fail return an error number, 0 for success.
class OPC_ZIP_EXPORT BufferedTarget {
public:
    static constexpr std::size_t CAPACITY = std::size_t{256} * 1024;

    explicit BufferedTarget(ByteTarget& out) : out(out), buffer(CAPACITY) {}

    int write(const unsigned char* bytes, std::size_t count) noexcept;
    int flush() noexcept;

    /// Makes room for this many bytes in the buffer, at most `CAPACITY`.
    int makeRoom(std::size_t count) noexcept { return roomSize() < count ? flush() : 0; }

    /// The next bytes of the buffer. Fill them, and call `advance` to write them.
    unsigned char* room() noexcept { return buffer.data() + used; }
    std::size_t roomSize() const noexcept { return buffer.size() - used; }
    void advance(std::size_t count) noexcept { used += count; }

    /// Replaces bytes that were written before.
    int patch(std::uint64_t offset, const unsigned char* bytes, std::size_t count) noexcept;

    /// Takes back everything after `offset`. At least as much must be written instead.
    void rewind(std::uint64_t offset) noexcept;

    /// Flushes, and copies as much of `source` as `ByteTarget::copyAt` can.
    /// @param copied  receives the number of bytes
    int copy(const FileDescriptor& source, std::uint64_t sourceOffset, std::uint64_t count,
             std::uint64_t& copied) noexcept;

    /// The number of bytes written so far.
    std::uint64_t tell() const noexcept { return flushed + used; }

private:
    ByteTarget& out;
    std::vector<unsigned char> buffer;
    std::size_t used = 0;
    std::uint64_t flushed = 0; ///< the number of bytes that the target has
};

} // namespace opc::physical::zip
