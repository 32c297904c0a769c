#include "BufferedTarget.hpp"

#include <algorithm>

namespace opc::physical::zip {

int BufferedTarget::write(const unsigned char* bytes, std::size_t count) noexcept {
    if (const int error = makeRoom(count))
        return error;
    if (count > buffer.size()) {
        const int error = out.writeAt(flushed, bytes, count);
        flushed += error ? 0 : count;
        return error;
    }
    std::copy_n(bytes, count, room());
    advance(count);
    return 0;
}

int BufferedTarget::flush() noexcept {
    if (used == 0)
        return 0;
    if (const int error = out.writeAt(flushed, buffer.data(), used))
        return error;
    flushed += used;
    used = 0;
    return 0;
}

int BufferedTarget::patch(std::uint64_t offset, const unsigned char* bytes, std::size_t count) noexcept {
    if (offset >= flushed) {
        std::copy_n(bytes, count, buffer.data() + (offset - flushed));
        return 0;
    }
    if (const int error = flush())
        return error;
    return out.writeAt(offset, bytes, count);
}

void BufferedTarget::rewind(std::uint64_t offset) noexcept {
    used = static_cast<std::size_t>(std::max(offset, flushed) - flushed);
    flushed = std::min(offset, flushed);
}

int BufferedTarget::copy(const FileDescriptor& source, std::uint64_t sourceOffset, std::uint64_t count,
                         std::uint64_t& copied) noexcept {
    copied = 0;
    if (const int error = flush())
        return error;
    copied = out.copyAt(flushed, source, sourceOffset, count);
    flushed += copied;
    return 0;
}

} // namespace opc::physical::zip
