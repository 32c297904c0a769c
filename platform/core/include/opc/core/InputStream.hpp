#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>

namespace opc {

/// A source of bytes that can be read once from its beginning to its end, and again after `close` and `open`.
///
/// Whoever hands one out says who owns it. It serves one thread at a time.
class OPC_CORE_EXPORT InputStream {
public:
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    /// Makes the stream ready to read at its first byte.
    virtual void open() = 0;

    /// Reads up to `count` bytes into `buffer`. To be called only while `isDone` is false.
    /// @return how many bytes were read; never more than `count`
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;

    /// Whether all bytes have been read.
    virtual bool isDone() const = 0;

    virtual void close() = 0;

    virtual ~InputStream();

protected:
    InputStream() = default;
};

} // namespace opc
