#include <opc/core/InputStreamSource.hpp>

namespace opc {

std::streamsize InputStreamSource::read(char* buffer, std::streamsize count) {
    auto* bytes = reinterpret_cast<unsigned char*>(buffer);
    // No bytes are no end yet, but Boost.Iostreams would take them for it.
    while (!source->isDone()) {
        const auto got = source->read(bytes, static_cast<std::uint64_t>(count));
        if (got != 0)
            return static_cast<std::streamsize>(got);
    }
    return -1;
}

} // namespace opc
