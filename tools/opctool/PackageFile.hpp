#pragma once

#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace opc::model {
class Package;
} // namespace opc::model

namespace opctool {

/// The package of a command, as given on the command line.
struct PackageArgument {
    std::string path;
    bool strict = false;
};

/// Declares the arguments of a command for the package that it opens.
void addPackage(CLI::App& command, PackageArgument& package);

/// The store of a command's package. Unless it is strict, it accepts packages that real programs write although they
/// break the standard, and prints a line on standard error for each oddity before it closes.
class PackageFile : public opc::interfaces::IPhysicalPackage {
public:
    explicit PackageFile(const PackageArgument& argument);

    /// Opens the model on this store. If a strict store fails, the message says whether a lenient one would succeed.
    void open(opc::model::Package& package, opc::interfaces::OpenMode mode) const;

    /// What the container has beside the parts.
    const std::vector<opc::physical::ZipPackage::IgnoredItem>& ignoredItems() const {
        return archive.ignoredItems();
    }

    bool usesContentTypeStream() override { return store.usesContentTypeStream(); }
    opc::interfaces::IPhysicalInputStream* getContentTypeInputStream() override {
        return store.getContentTypeInputStream();
    }
    opc::interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override {
        return store.getContentTypeOutputStream();
    }
    std::vector<opc::interfaces::IPhysicalPart*> getParts() override { return store.getParts(); }
    void open(const opc::interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    opc::interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                               const opc::interfaces::IPhysicalPartInfo& info) override {
        return store.createPart(name, contentType, info);
    }
    void deletePart(const std::u16string& name) override { store.deletePart(name); }
    std::vector<opc::interfaces::IgnoredItem> getIgnoredItems() override { return store.getIgnoredItems(); }
    std::vector<opc::interfaces::Oddity> getOddities() override;

private:
    const PackageArgument argument;
    opc::physical::ZipPackage archive;
    opc::physical::LenientPackage lenient;
    opc::interfaces::IPhysicalPackage& store; ///< one of the two above
    bool hasToldOddities = false;             ///< since it was opened
};

} // namespace opctool
