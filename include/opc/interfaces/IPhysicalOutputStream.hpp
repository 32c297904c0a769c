#pragma once

#include <cstdint>

namespace opc::interfaces {

/// Where the new content of a part, or of the content types stream, is written to.
///
/// The physical layer owns it; the library never deletes it. It arrives ready to write. The library closes
/// the streams that it fills itself (content types, relationships); those of other parts may never be closed,
/// so what was written must count when the package is closed. Bytes that meet a stream which says that it is done
/// are dropped without a word.
class IPhysicalOutputStream {
public:
    /// Writes all bytes, or raises `opc::Exception`, as when the store runs full.
    /// @return `count`; any other number is taken for a failure
    virtual std::uint64_t write(const unsigned char* buffer, std::uint64_t count) = 0;

    /// True if the stream takes no more bytes.
    virtual bool isDone() const = 0;

    virtual void flush() = 0;
    virtual void close() = 0;

    virtual ~IPhysicalOutputStream() = default;
};

} // namespace opc::interfaces
