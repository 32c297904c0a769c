#pragma once

#include <opc/interfaces/IPhysicalInputStream.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace opc::physical::lenient {

/// A stream of bytes that it owns.
class BytesStream : public interfaces::IPhysicalInputStream {
public:
    explicit BytesStream(std::vector<unsigned char> bytes) : bytes(std::move(bytes)) {}

    void open() override { position = 0; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes.size() - position));
        std::copy_n(bytes.data() + position, taken, buffer);
        position += taken;
        return taken;
    }
    bool isDone() const override { return position == bytes.size(); }
    void close() override {}

private:
    const std::vector<unsigned char> bytes;
    std::size_t position = 0;
};

} // namespace opc::physical::lenient
