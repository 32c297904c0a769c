#include <opc/core/InputStreamSource.hpp>

namespace opc {

std::streamsize InputStreamSource::read(char* buffer, std::streamsize count) {
    auto* bytes = reinterpret_cast<unsigned char*>(buffer);
    // Boost.Iostreams would take 0 bytes for the end, so this reads until there are some.
    while (!source->isDone()) {
        const auto got = source->read(bytes, static_cast<std::uint64_t>(count));
        if (got != 0)
            return static_cast<std::streamsize>(got);
    }
    return -1;
}

} // namespace opc
