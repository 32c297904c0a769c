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

std::u16string fromArgument(const std::string& argument) {
    return opc::toString(argument, true);
}

} // namespace opctool
