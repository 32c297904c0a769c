#pragma once

#include <opc/core/OutputStream.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace opc::model {

/// Appends what is written to a text.
class StringOutput : public OutputStream {
public:
    explicit StringOutput(std::string& target) : text(target) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        text.append(buffer, buffer + count);
        return count;
    }
    bool isDone() const override { return false; }
    void flush() override {}
    void close() override {}

private:
    std::string& text;
};

/// Writes the bytes of a whole document, and flushes. The rest is dropped once the stream says that it is done.
void writeDocument(std::string_view document, OutputStream& stream);

} // namespace opc::model
