#pragma once

#include <cstdint>

namespace opc::interfaces {

/// The bytes of a part, or of the content types stream, as the physical layer gives them to read.
///
/// The physical layer owns it and says how long it lives; the library never deletes it. It arrives ready to
/// read, without `open`; `close` and then `open` restart it at the first byte. Failures are `opc::Exception`.
class IPhysicalInputStream {
public:
    virtual void open() = 0;

    /// @return how many bytes were read; never more than `count`
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;

    /// True at the end.
    virtual bool isDone() const = 0;

    virtual void close() = 0;

    virtual ~IPhysicalInputStream() = default;
};

} // namespace opc::interfaces
