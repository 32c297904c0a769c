#include "OpenedPackage.hpp"

#include "TerminalText.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <CLI/CLI.hpp>

#include <iostream>

namespace opctool {

using opc::interfaces::IPhysicalPackage;
using opc::interfaces::OpenMode;

namespace {

const char* wayOut(const PackageToRead& toRead) {
    return toRead.lenient ? "" : "; --lenient opens the package all the same";
}

} // namespace

CLI::Option* addPackageToRead(CLI::App& command, PackageToRead& package) {
    command.add_option("PACKAGE", package.path, "The package's file")->required();
    return command.add_flag(
        "--lenient", package.lenient,
        "Pass over items without content type and relationships parts without source, with a "
        "line about each on standard error");
}

OpenedPackage::OpenedPackage(const std::string& path, OpenMode mode)
    : archive(path), lenientArchive(archive), package(archive) {
    package.open(mode);
}

OpenedPackage::OpenedPackage(const PackageToRead& toRead)
    : archive(toRead.path), lenientArchive(archive),
      package(toRead.lenient ? static_cast<IPhysicalPackage&>(lenientArchive) : archive) {
    try {
        package.open(OpenMode::ReadOnly);
    } catch (const opc::model::ContentTypeNotFound& e) {
        throw opc::model::ContentTypeNotFound(e.what() + std::string(wayOut(toRead)));
    } catch (const opc::model::InconsistentPackage& e) {
        throw opc::model::InconsistentPackage(e.what() + std::string(wayOut(toRead)));
    }
    for (const auto& item : lenientArchive.hiddenItems())
        std::cerr << "opctool: hidden: "
                  << withoutControlCharacters(opc::toUDEString(item.name) + ": " + item.reason) << '\n';
}

void OpenedPackage::save() {
    package.close(false);
}

std::uint64_t measure(const opc::model::Part& part) {
    if (const auto known = part.getSize())
        return *known;
    std::vector<unsigned char> block(std::size_t{64} * 1024);
    opc::InputStream& stream = part.getInputStream();
    std::uint64_t size = 0;
    while (!stream.isDone())
        size += stream.read(block.data(), block.size());
    return size;
}

std::u16string fromArgument(const std::string& argument) {
    std::u16string text = opc::toString(argument, true);
    if (opc::toUDEString(text) != argument)
        throw CLI::ValidationError(argument, "is no UTF-8");
    return text;
}

} // namespace opctool
