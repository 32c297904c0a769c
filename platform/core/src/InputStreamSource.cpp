#include <opc/core/InputStreamSource.hpp>

namespace opc {

std::streamsize InputStreamSource::read(char* buffer, std::streamsize count) {
    if (source->isDone())
        return -1;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are characters to Boost.Iostreams
    auto* bytes = reinterpret_cast<unsigned char*>(buffer);
    const auto got = static_cast<std::streamsize>(source->read(bytes, static_cast<std::uint64_t>(count)));
    return got == 0 && source->isDone() ? -1 : got;
}

} // namespace opc
