#pragma once

#include <opc/core/InputStream.hpp>

namespace opctool {

/// The bytes of standard input, as the content of a part. They can be read once.
class StandardInput final : public opc::InputStream {
public:
    void open() override {}
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return done; }
    void close() override {}

private:
    bool done = false;
};

} // namespace opctool
