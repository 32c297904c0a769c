#include "SignedPackage.hpp"

#include "FileRun.hpp"

namespace opctool {

SignedPackage::SignedPackage(FileRun& run, opc::interfaces::OpenMode mode)
    : file(run), package(file), manager(package) {
    file.open(package, mode);
}

PackageFile& SignedPackage::closeUnchanged() {
    package.close(true);
    return file;
}

void SignedPackage::save() {
    package.close(false);
    file.deliver();
}

} // namespace opctool
