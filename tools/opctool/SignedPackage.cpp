#include "SignedPackage.hpp"

#include "FileRun.hpp"

#include <opc/standard_signatures/Verification.hpp>

namespace opctool {

SignedPackage::SignedPackage(FileRun& run, opc::interfaces::OpenMode mode)
    : run(run), file(run), package(file), manager(package) {
    file.open(package, mode);
}

PackageFile& SignedPackage::closeUnchanged() {
    package.close(true);
    return file;
}

bool SignedPackage::hasOwnSignatures() const {
    return !package
                .getRelationshipsByType(
                    u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin")
                .empty();
}

bool SignedPackage::hasStandardSignatures() {
    return manager.hasForeignSignatures() || opc::standard_signatures::hasSignatures(file.asItLies());
}

std::vector<std::string> SignedPackage::standardSignatures() {
    return opc::standard_signatures::listSignatures(file.asItLies());
}

void SignedPackage::save() {
    const bool abandons = run.options().dryRun;
    package.close(abandons);
    if (!abandons)
        file.deliver();
}

} // namespace opctool
