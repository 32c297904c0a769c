#pragma once

#include "PackageFile.hpp"

#include <opc/inspection/Archive.hpp>
#include <opc/model/Package.hpp>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

/// The package of one run. The constructor opens it. Without a call of `save`, the file doesn't change.
class OpenedPackage {
public:
    /// @param mending  as of `PackageFile`
    OpenedPackage(FileRun& run, opc::interfaces::OpenMode mode,
                  const opc::editing::Mending* mending = nullptr);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }

    /// What the container has beside the parts.
    const std::vector<opc::physical::ZipPackage::IgnoredItem>& ignoredItems() const {
        return file.ignoredItems();
    }

    /// @return the size of the archive in bytes
    std::uint64_t size() const { return file.size(); }

    void checkBeforeReplacing(PackageFile::Check check) { file.checkBeforeReplacing(std::move(check)); }

    /// The archive as it was opened.
    opc::inspection::Archive openArchive() const;

    /// Writes the changes, into the file or into the target of the run, and closes the package. A dry run drops them.
    void save();

    /// Finds the package itself for "/", otherwise the part with that name.
    /// @param use  called with the result
    template <typename Use>
    void withSource(const std::string& name, Use use);

private:
    FileRun& run;
    PackageFile file;
    opc::model::Package package;
};

/// @return the size in bytes; reads the content only if the store doesn't know the size
std::uint64_t measure(const opc::model::Part& part);

/// A text from the command line, which must be UTF-8.
/// @throws CLI::ValidationError  it isn't
std::u16string fromArgument(const std::string& argument);

template <typename Use>
void OpenedPackage::withSource(const std::string& name, Use use) {
    if (name == "/") {
        use(static_cast<opc::model::RelationshipSource&>(package));
        return;
    }
    opc::model::Part part = package.getPart(opc::model::PartName(fromArgument(name)));
    use(static_cast<opc::model::RelationshipSource&>(part));
}

} // namespace opctool
