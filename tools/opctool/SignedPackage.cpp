#include "SignedPackage.hpp"

namespace opctool {

SignedPackage::SignedPackage(const std::string& path, opc::interfaces::OpenMode mode)
    : archive(path), watched(archive, progress), package(watched), manager(package) {
    package.open(mode);
}

void SignedPackage::save() {
    package.close(false);
    progress.hide();
}

} // namespace opctool
