#pragma once

#include "PackageFile.hpp"
#include "Progress.hpp"

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>

namespace opctool {

/// The package of a command that is about signatures: opened when it is made. Unless `save` was called, it is
/// left as it was. What takes long shows its progress on a terminal.
class SignedPackage {
public:
    SignedPackage(const PackageArgument& argument, opc::interfaces::OpenMode mode);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }
    opc::model::DigitalSignatureManager& signatures() { return manager; }

    /// Closes the package and writes what has changed.
    void save();

private:
    PackageFile file;
    Progress progress;
    WatchedPackage watched;
    opc::model::Package package;
    opc::model::DigitalSignatureManager manager;
};

} // namespace opctool
