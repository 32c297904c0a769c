#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>

namespace opc {

/// A source of bytes. It can be read once from its first byte to its end, and again after `close` and `open`.
///
/// The function that returns a stream documents who owns it. Use a stream from one thread at a time.
class OPC_CORE_EXPORT InputStream {
public:
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    /// Makes the stream ready to read at its first byte.
    virtual void open() = 0;

    /// Reads up to `count` bytes into `buffer`. Call it only while `isDone` is false.
    /// @return the number of bytes read, at most `count`
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;

    /// Whether all bytes have been read.
    virtual bool isDone() const = 0;

    virtual void close() = 0;

    virtual ~InputStream();

protected:
    InputStream() = default;
};

} // namespace opc
