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

/// Gathers small writes before they reach a target. Going back to write the header of an item once its size
/// is known, as the writer of an archive does for each, mostly stays within the buffer.
class BufferedTarget {
public:
    explicit BufferedTarget(ByteTarget& target) : out(target), buffer(256U * 1024U) {}

    /// @return an error number, 0 for success
    int write(const unsigned char* bytes, std::size_t count) noexcept;
    int flush() noexcept;

    /// Flushes, and copies from `source` what can be copied in `ByteTarget::copyAt`.
    /// @param copied  gets how many bytes
    /// @return an error number of the flush, 0 for success
    int copy(const FileDescriptor& source, std::uint64_t sourceOffset, std::uint64_t count,
             std::uint64_t& copied) noexcept;
    void seek(std::uint64_t offset) noexcept { position = offset; }
    std::uint64_t tell() const noexcept { return position; }
    std::uint64_t size() const noexcept { return end; }

private:
    ByteTarget& out;
    std::vector<unsigned char> buffer;
    std::uint64_t bufferStart = 0; ///< offset of the buffer's first byte in the target
    std::size_t bufferUsed = 0;
    std::uint64_t position = 0;
    std::uint64_t end = 0;
};

} // namespace opc::physical::zip
