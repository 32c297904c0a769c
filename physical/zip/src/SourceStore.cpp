#include "SourceStore.hpp"

#include "Failure.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

int SourceBytes::fetch(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) {
    const std::uint64_t left = sizeAtOpen - std::min(offset, sizeAtOpen);
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    for (got = 0; got < count;) {
        const std::size_t now = application.read(offset + got, buffer + got, count - got);
        if (now > count - got)
            return EIO;
        if (now == 0)
            break;
        got += now;
    }
    return 0;
}

std::shared_ptr<ByteSource> SourceStore::read() {
    if (kept())
        return kept();
    auto bytes = std::make_shared<SourceBytes>(application);
    if (bytes->size() == 0)
        failSystem(place(), "can't open", ENOENT);
    return bytes;
}

} // namespace opc::physical::zip
