#pragma once

#include "BytesStream.hpp"

#include <optional>

namespace opc::physical::lenient {

/// A stream that was read to its end. It gives the same bytes, and frees them afterwards. If it is opened again, it
/// is read again.
class ReadStream : public interfaces::IPhysicalInputStream {
public:
    /// @param stream  open; must outlive this object
    /// @param bytes   all its bytes
    ReadStream(interfaces::IPhysicalInputStream& stream, std::vector<unsigned char> bytes)
        : stream(stream), bytes(std::move(bytes)) {}

    void open() override {
        if (!isAgain)
            stream.close();
        isAgain = true;
        stream.open();
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        if (isAgain)
            return stream.read(buffer, count);
        const std::uint64_t got = bytes ? bytes->read(buffer, count) : 0;
        if (bytes && bytes->isDone())
            bytes.reset();
        return got;
    }
    bool isDone() const override { return isAgain ? stream.isDone() : !bytes || bytes->isDone(); }
    void close() override {
        isAgain = true;
        bytes.reset();
        stream.close();
    }

private:
    interfaces::IPhysicalInputStream& stream;
    std::optional<BytesStream> bytes; ///< empty after all were given
    bool isAgain = false;
};

} // namespace opc::physical::lenient
