#pragma once

#include <opc/core/InputStream.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

namespace opc::standard_signatures {

/// A content that takes from a room of bytes, which others share, what is read of it.
class PaidContent final : public InputStream {
public:
    PaidContent(std::unique_ptr<InputStream> content, std::uint64_t& room)
        : content(std::move(content)), room(room) {}

    void open() override { content->open(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = content->read(buffer, count);
        room -= std::min(room, got);
        return got;
    }
    bool isDone() const override { return content->isDone(); }
    void close() override { content->close(); }

private:
    const std::unique_ptr<InputStream> content;
    std::uint64_t& room;
};

} // namespace opc::standard_signatures
