#include "PackageFile.hpp"

#include "Messages.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Package.hpp>

#include <CLI/CLI.hpp>

#include <utility>

namespace opctool {

using opc::interfaces::IPhysicalPackage;
using opc::interfaces::Oddity;
using opc::interfaces::OpenMode;

namespace {

opc::physical::ZipOptions zipOptions(bool strict) {
    opc::physical::ZipOptions options;
    options.lenient = !strict;
    return options;
}

bool opensLeniently(const std::string& path) {
    opc::physical::ZipPackage archive(path, zipOptions(false));
    opc::physical::LenientPackage lenient(archive);
    opc::model::Package package(lenient);
    try {
        package.open(OpenMode::ReadOnly);
        return true;
    } catch (const opc::Exception&) {
        return false;
    }
}

} // namespace

void addPackage(CLI::App& command, PackageArgument& package) {
    command.add_option("PACKAGE", package.path, "The package's file")->required();
    CLI::Option* strict =
        command.add_flag("--strict", package.strict, "Refuse a package that breaks the standard");
    command
        .add_flag("--lenient",
                  "Read it as other programs do, and report on standard error what is wrong; the default")
        ->excludes(strict);
}

PackageFile::PackageFile(const PackageArgument& argument)
    : argument(argument), archive(argument.path, zipOptions(argument.strict)), lenient(archive),
      store(argument.strict ? static_cast<IPhysicalPackage&>(archive) : lenient) {
}

void PackageFile::open(opc::model::Package& package, OpenMode mode) const {
    try {
        package.open(mode);
    } catch (opc::Exception& e) {
        if (argument.strict && opensLeniently(argument.path))
            e.addDetails("--lenient opens the package all the same");
        throw;
    }
}

void PackageFile::open(const OpenMode& mode) {
    hasToldOddities = false;
    store.open(mode);
}

void PackageFile::close(bool abandon) {
    if (!std::exchange(hasToldOddities, true))
        tellOddities(argument.path, getOddities());
    store.close(abandon);
}

std::vector<Oddity> PackageFile::getOddities() {
    return store.getOddities();
}

} // namespace opctool
