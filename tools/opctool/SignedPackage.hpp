#pragma once

#include "PackageFile.hpp"
#include "Progress.hpp"

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>

namespace opctool {

/// The package of a command about signatures. The constructor opens it. Without a call of `save`, the file doesn't
/// change. Long work shows its progress on a terminal.
class SignedPackage {
public:
    SignedPackage(const PackageArgument& argument, opc::interfaces::OpenMode mode);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }
    opc::model::DigitalSignatureManager& signatures() { return manager; }

    /// Writes the changes and closes the package.
    void save();

private:
    PackageFile file;
    Progress progress;
    WatchedPackage watched;
    opc::model::Package package;
    opc::model::DigitalSignatureManager manager;
};

} // namespace opctool
