#pragma once

#include "FileDescriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace opc::physical::zip {

/// Where a new archive is written to, at any place.
class ByteTarget {
public:
    virtual ~ByteTarget() = default;

    /// @return an error number, 0 for success
    virtual int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept = 0;

    /// Copies bytes of a file without taking them through memory, if the system can.
    /// @return how many were copied; the others must be written
    virtual std::uint64_t copyAt(std::uint64_t /*offset*/, const FileDescriptor& /*source*/,
                                 std::uint64_t /*sourceOffset*/, std::uint64_t /*count*/) noexcept {
        return 0;
    }
};

/// Gathers small writes before they reach a target. What has been written can still be changed: mostly it is
/// still in the buffer. Operations that may fail give an error number, 0 for success.
class BufferedTarget {
public:
    static constexpr std::size_t CAPACITY = std::size_t{256} * 1024;

    explicit BufferedTarget(ByteTarget& out) : out(out), buffer(CAPACITY) {}

    int write(const unsigned char* bytes, std::size_t count) noexcept;
    int flush() noexcept;

    /// Makes room for so many bytes in the buffer, `CAPACITY` at most.
    int makeRoom(std::size_t count) noexcept { return roomSize() < count ? flush() : 0; }

    /// The next bytes of the buffer: what is put there is written by `advance`.
    unsigned char* room() noexcept { return buffer.data() + used; }
    std::size_t roomSize() const noexcept { return buffer.size() - used; }
    void advance(std::size_t count) noexcept { used += count; }

    /// Replaces bytes that have been written.
    int patch(std::uint64_t offset, const unsigned char* bytes, std::size_t count) noexcept;

    /// Takes back what stands behind `offset`. At least as much must be written instead.
    void rewind(std::uint64_t offset) noexcept;

    /// Flushes, and copies from `source` what can be copied in `ByteTarget::copyAt`.
    /// @param copied  gets how many bytes
    int copy(const FileDescriptor& source, std::uint64_t sourceOffset, std::uint64_t count,
             std::uint64_t& copied) noexcept;

    /// How much has been written.
    std::uint64_t tell() const noexcept { return flushed + used; }

private:
    ByteTarget& out;
    std::vector<unsigned char> buffer;
    std::size_t used = 0;
    std::uint64_t flushed = 0; ///< what the target has
};

} // namespace opc::physical::zip
