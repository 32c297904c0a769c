#pragma once

#include <cstdint>

namespace opc::interfaces {

/// Writes the new content of a part or of the content types stream.
///
/// The store owns the stream; the library never deletes it. It is ready to write when the store returns it. The library
/// closes the streams that it fills itself (content types, relationships). Streams of other parts may stay open, so the
/// written bytes must count when the package is closed. The library doesn't write to a stream that is done: it drops
/// these bytes without an error.
class IPhysicalOutputStream {
public:
    /// Writes all `count` bytes.
    /// @return `count`; the library treats any other number as a failure
    /// @throws opc::Exception  the bytes can't be written, for example because the store is full
    virtual std::uint64_t write(const unsigned char* buffer, std::uint64_t count) = 0;

    /// Whether the stream accepts no more bytes.
    virtual bool isDone() const = 0;

    /// Passes buffered bytes on to the store.
    virtual void flush() = 0;

    /// Ends the content.
    virtual void close() = 0;

    virtual ~IPhysicalOutputStream() = default;
};

} // namespace opc::interfaces
