#include "SignedPackage.hpp"

namespace opctool {

SignedPackage::SignedPackage(const PackageArgument& argument, opc::interfaces::OpenMode mode)
    : file(argument), watched(file, progress), package(watched), manager(package) {
    file.open(package, mode);
}

void SignedPackage::save() {
    package.close(false);
}

} // namespace opctool
