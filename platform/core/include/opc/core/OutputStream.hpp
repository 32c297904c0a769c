#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>

namespace opc {

/// A sink of bytes.
///
/// The function that returns a stream documents who owns it. Use a stream from one thread at a time.
class OPC_CORE_EXPORT OutputStream {
public:
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    /// Writes `count` bytes from `buffer`. Call it only while `isDone` is false.
    /// @return the number of bytes written
    virtual std::uint64_t write(const unsigned char* buffer, std::uint64_t count) = 0;

    /// Whether the stream accepts no more bytes.
    virtual bool isDone() const = 0;

    virtual void flush() = 0;
    virtual void close() = 0;

    virtual ~OutputStream();

protected:
    OutputStream() = default;
};

} // namespace opc
