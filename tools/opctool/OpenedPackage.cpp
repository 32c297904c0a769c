#include "OpenedPackage.hpp"

#include <opc/core/Text.hpp>

namespace opctool {

OpenedPackage::OpenedPackage(const std::string& path, opc::interfaces::OpenMode mode)
    : archive(path), package(archive) {
    package.open(mode);
}

void OpenedPackage::save() {
    package.close(false);
}

std::uint64_t measure(const opc::model::Part& part) {
    std::vector<unsigned char> block(64 * 1024);
    opc::InputStream& stream = part.getInputStream();
    std::uint64_t size = 0;
    while (!stream.isDone())
        size += stream.read(block.data(), block.size());
    return size;
}

std::u16string fromArgument(const std::string& argument) {
    return opc::toString(argument, true);
}

} // namespace opctool
