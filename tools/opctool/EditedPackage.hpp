#pragma once

#include "FileRun.hpp"
#include "OpenedPackage.hpp"
#include "SourceDate.hpp"

#include <opc/editing/Editor.hpp>
#include <opc/editing/Mending.hpp>

#include <string>

namespace opctool {

/// The package of a run that edits it. The constructor opens it. Without a call of `finish`, the file doesn't change.
class EditedPackage {
public:
    explicit EditedPackage(FileRun& run)
        : run(run), package(run, opc::interfaces::OpenMode::ReadWrite), edits(*package) {
        edits.setNow(presentTime());
    }

    /// The same with what was mended before.
    /// @param mending  must outlive this object
    EditedPackage(FileRun& run, const opc::editing::Mending& mending)
        : run(run), package(run, opc::interfaces::OpenMode::ReadWrite, &mending),
          edits(*package, mending.signatures, mending.changes()) {
        edits.setNow(presentTime());
    }

    opc::editing::Editor& editor() { return edits; }
    opc::model::Package& operator*() { return *package; }

    /// Both as in `OpenedPackage`.
    /// @{
    opc::inspection::Archive openArchive() const { return package.openArchive(); }
    void checkBeforeReplacing(PackageFile::Check check) { package.checkBeforeReplacing(std::move(check)); }
    /// @}

    /// Prints the changes, and saves the package. A dry run doesn't save. The text of the changes is printed by a dry run, with
    /// -v, and if `tells`.
    /// @param name   of what was made; may be empty. It is the text if the changes aren't
    /// @throws BreaksSignatures  they break signatures, and the run doesn't allow that; they are printed all the same if it is a
    ///                           dry run
    void finish(const std::string& name = {}, bool tells = false);

private:
    void print(const std::string& name, bool tells);

    FileRun& run;
    OpenedPackage package;
    opc::editing::Editor edits;
};

} // namespace opctool
