#pragma once

#include <opc/editing/Editor.hpp>

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

namespace opc::editing {

/// A copy of a package, to see what changes make of it. The package itself stays as it is.
class Rehearsal {
public:
    /// @param original  must outlive this object
    /// @throws as `Package::open`
    Rehearsal(const inspection::Archive& original, const physical::ZipOptions& limits);

    Editor& editor() { return edits; }

    /// Ends the rehearsal.
    /// @return the changed package, as `makeTemporaryArchive` keeps it
    /// @throws as `Package::close`; `Exception` if the temporary file can't be written
    inspection::Archive save();

private:
    const physical::ZipOptions limits;
    inspection::ArchiveSource source;
    physical::ZipPackage zip;
    physical::LenientPackage lenient;
    model::Package package;
    Editor edits;
};

} // namespace opc::editing
