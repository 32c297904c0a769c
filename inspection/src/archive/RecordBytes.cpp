#include "archive/RecordBytes.hpp"

#include "zip/src/Failure.hpp"
#include "zip/src/NameText.hpp"

#include <algorithm>

namespace opc::inspection::archive {

const unsigned char* RecordBytes::look(std::uint64_t offset, std::size_t count) {
    if (available(offset, count) < count)
        return nullptr;
    if (const unsigned char* bytes = source.inMemory())
        return bytes + offset;
    if (buffer.size() < count)
        buffer.resize(count);
    std::size_t got = 0;
    if (const int error = source.readAt(offset, buffer.data(), count, got))
        physical::zip::failSystem(place, "can't read", error);
    return got == count ? buffer.data() : nullptr; // fewer: another program has cut the file off
}

std::size_t RecordBytes::available(std::uint64_t offset, std::uint64_t count) const {
    const std::uint64_t left = source.size() - std::min(offset, source.size());
    return static_cast<std::size_t>(std::min(left, count));
}

std::string decodeName(std::string_view stored) {
    return physical::zip::isUTF8(stored) ? std::string(stored) : physical::zip::fromCodePage437(stored);
}

} // namespace opc::inspection::archive
