#pragma once

#include <cstdint>

namespace opc::interfaces {

/// Reads the bytes of a part or of the content types stream.
///
/// The store owns the stream and decides how long it lives; the library never deletes it. The library reads it without
/// calling `open` first. `close` followed by `open` restarts it at the first byte. Failures are `opc::Exception`.
class IPhysicalInputStream {
public:
    /// Restarts a closed stream at the first byte.
    virtual void open() = 0;

    /// Reads up to `count` bytes into `buffer`.
    /// @return the number of bytes read, at most `count`
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;

    /// Whether all bytes have been read.
    virtual bool isDone() const = 0;

    virtual void close() = 0;

    virtual ~IPhysicalInputStream() = default;
};

} // namespace opc::interfaces
