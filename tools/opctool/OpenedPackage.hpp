#pragma once

#include "PackageFile.hpp"

#include <opc/model/Package.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace opctool {

/// The package of one command: opened when it is made. Unless `save` was called, it is left as it was.
class OpenedPackage {
public:
    OpenedPackage(const PackageArgument& argument, opc::interfaces::OpenMode mode);

    opc::model::Package* operator->() { return &package; }
    opc::model::Package& operator*() { return package; }

    /// What the container holds beside the parts.
    const std::vector<opc::physical::ZipPackage::IgnoredItem>& ignoredItems() const {
        return file.ignoredItems();
    }

    /// Closes the package and writes what has changed.
    void save();

    /// The package itself for "/", otherwise the part of that name.
    /// @param use  called with what was found
    template <typename Use>
    void withSource(const std::string& name, Use use);

private:
    PackageFile file;
    opc::model::Package package;
};

/// @return the size in bytes; the content is read only if the physical layer tells none
std::uint64_t measure(const opc::model::Part& part);

/// A text from the command line, which is UTF-8.
/// @throws CLI::ValidationError  if it isn't
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
