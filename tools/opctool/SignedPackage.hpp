#pragma once

#include "PackageFile.hpp"

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>

#include <string>
#include <vector>

namespace opctool {

/// The package of a run about signatures. The constructor opens it. Without a call of `save`, the file doesn't
/// change.
class SignedPackage {
public:
    SignedPackage(FileRun& run, opc::interfaces::OpenMode mode);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }
    opc::model::DigitalSignatureManager& signatures() { return manager; }

    /// The store as it lies. `standard_signatures` signs what other programs will read, which isn't what a lenient store shows.
    opc::interfaces::IPhysicalPackage& asItLies() { return file.asItLies(); }

    /// Whether relationships lead to signatures in the library's own profile, which need not be readable.
    bool hasOwnSignatures() const;

    /// Whether there is anything of signatures in the standard's profile, wherever it lies.
    bool hasStandardSignatures();

    /// The parts of the signatures in the standard's profile.
    std::vector<std::string> standardSignatures();

    /// Closes the package without a change.
    /// @return its file
    PackageFile& closeUnchanged();

    /// Writes the changes, into the file or into the target of the run, and closes the package. A dry run drops them.
    void save();

private:
    FileRun& run;
    PackageFile file;
    opc::model::Package package;
    opc::model::DigitalSignatureManager manager;
};

} // namespace opctool
