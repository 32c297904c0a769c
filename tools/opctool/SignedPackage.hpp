#pragma once

#include "PackageFile.hpp"

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>

namespace opctool {

/// The package of a run about signatures. The constructor opens it. Without a call of `save`, the file doesn't
/// change.
class SignedPackage {
public:
    SignedPackage(FileRun& run, opc::interfaces::OpenMode mode);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }
    opc::model::DigitalSignatureManager& signatures() { return manager; }

    /// Closes the package without a change.
    /// @return its file
    PackageFile& closeUnchanged();

    /// Writes the changes, into the file or into the target of the run, and closes the package.
    void save();

private:
    PackageFile file;
    opc::model::Package package;
    opc::model::DigitalSignatureManager manager;
};

} // namespace opctool
