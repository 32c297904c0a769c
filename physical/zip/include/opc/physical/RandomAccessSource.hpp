#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstddef>
#include <cstdint>

namespace opc::physical {

/// The bytes of an archive that the application brings: a file of another kind, an object in a store, a resource that a
/// server gives in ranges. `ZipPackage` asks it for the ranges that it needs.
///
/// The bytes must stay the same while the package is open. If they change, reading fails with an exception: sizes, local
/// headers and checksums no longer agree. It is called in the thread that uses the package, and owned by the application.
class OPC_ZIP_EXPORT RandomAccessSource {
public:
    RandomAccessSource() = default;
    RandomAccessSource(const RandomAccessSource&) = delete;
    RandomAccessSource& operator=(const RandomAccessSource&) = delete;
    virtual ~RandomAccessSource() = default;

    /// The number of bytes. Asked once for each `open` of the package; 0 means that there is no package yet.
    /// @throws any exception: it leaves the operation of the package unchanged
    virtual std::uint64_t size() = 0;

    /// Reads bytes from a place within the size.
    /// @param offset  of the first byte
    /// @param buffer  has room for `count` bytes
    /// @param count   at least 1
    /// @return how many bytes were read. Fewer than `count` are no end: the rest is asked for again. 0 means that the bytes
    ///         have been cut off
    /// @throws any exception: it leaves the operation of the package unchanged
    virtual std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) = 0;
};

} // namespace opc::physical
