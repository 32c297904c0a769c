#pragma once

#include <opc/core/InputStream.hpp>

#include <cstdint>

namespace opc {

/// Counts what is read from another stream.
class CountedStream final : public InputStream {
public:
    /// @param stream  must outlive this object
    explicit CountedStream(InputStream& stream) : stream(stream) {}

    void open() override { stream.open(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t most) override {
        const std::uint64_t got = stream.read(buffer, most);
        bytes += got;
        return got;
    }
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

    std::uint64_t count() const { return bytes; }

private:
    InputStream& stream;
    std::uint64_t bytes = 0;
};

} // namespace opc
