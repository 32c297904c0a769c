#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <cstddef>
#include <vector>

namespace opc {

/// Reads a byte vector. The vector isn't copied: it must outlive the adaptor and must not change.
class OPC_CORE_EXPORT ByteArrayInAdaptor : public InputStream {
public:
    explicit ByteArrayInAdaptor(const std::vector<unsigned char>& source) noexcept : source(source) {}

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    const std::vector<unsigned char>& source;
    std::size_t position = 0;
};

/// Appends the written bytes to a byte vector, which must outlive the adaptor.
class OPC_CORE_EXPORT ByteArrayOutAdaptor : public OutputStream {
public:
    explicit ByteArrayOutAdaptor(std::vector<unsigned char>& target) noexcept : target(target) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void flush() override;
    void close() override;

private:
    std::vector<unsigned char>& target;
};

} // namespace opc
