#include <opc/core/StreamHelper.hpp>

#include <ostream>
#include <vector>

namespace opc {

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

} // namespace

bool StreamHelper::copyStreamToStream(InputStream& source, std::ostream& target) {
    std::vector<char> block(BLOCK_SIZE);
    while (!source.isDone() && target) {
        const auto got = source.read(reinterpret_cast<unsigned char*>(block.data()), block.size());
        target.write(block.data(), static_cast<std::streamsize>(got));
    }
    return target.good();
}

} // namespace opc
