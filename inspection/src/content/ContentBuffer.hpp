#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <streambuf>
#include <vector>

namespace opc::inspection {

/// A content, for what reads standard streams.
class ContentBuffer final : public std::streambuf {
public:
    /// @param stream  open; must outlive this object
    explicit ContentBuffer(InputStream& stream) : stream(stream) {}

private:
    int_type underflow() override {
        std::size_t filled = 0;
        while (filled == 0 && !stream.isDone())
            filled = static_cast<std::size_t>(
                stream.read(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()));
        setg(bytes.data(), bytes.data(), bytes.data() + filled);
        return filled == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
    }

    InputStream& stream;
    std::vector<char> bytes = std::vector<char>(65536);
};

} // namespace opc::inspection
