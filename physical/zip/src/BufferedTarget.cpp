#include "BufferedTarget.hpp"

#include <algorithm>

namespace opc::physical::zip {

int BufferedTarget::write(const unsigned char* bytes, std::size_t count) noexcept {
    const bool continues = position >= bufferStart && position <= bufferStart + bufferUsed;
    if (!continues || position - bufferStart + count > buffer.size()) {
        if (const int error = flush())
            return error;
        bufferStart = position;
    }
    if (count > buffer.size()) {
        if (const int error = out.writeAt(position, bytes, count))
            return error;
        bufferStart = position + count;
    } else {
        const auto start = static_cast<std::size_t>(position - bufferStart);
        std::copy_n(bytes, count, buffer.data() + start);
        bufferUsed = std::max(bufferUsed, start + count);
    }
    position += count;
    end = std::max(end, position);
    return 0;
}

int BufferedTarget::flush() noexcept {
    if (bufferUsed == 0)
        return 0;
    if (const int error = out.writeAt(bufferStart, buffer.data(), bufferUsed))
        return error;
    bufferStart += bufferUsed;
    bufferUsed = 0;
    return 0;
}

int BufferedTarget::copy(const FileDescriptor& source, std::uint64_t sourceOffset, std::uint64_t count,
                         std::uint64_t& copied) noexcept {
    copied = 0;
    if (const int error = flush())
        return error;
    copied = out.copyAt(position, source, sourceOffset, count);
    position += copied;
    bufferStart = position;
    end = std::max(end, position);
    return 0;
}

} // namespace opc::physical::zip
