#include "OpenedPackage.hpp"

#include "FileRun.hpp"
#include "TemporaryFile.hpp"

#include <opc/core/Text.hpp>

#include <CLI/CLI.hpp>

namespace opctool {

OpenedPackage::OpenedPackage(FileRun& run, opc::interfaces::OpenMode mode,
                             const opc::editing::Mending* mending)
    : run(run), file(run, mending), package(file) {
    file.open(package, mode);
}

opc::inspection::Archive OpenedPackage::openArchive() const {
    const opc::physical::ZipOptions& limits = run.options().reading.zip;
    if (!run.isStandardInput())
        return opc::inspection::Archive(std::filesystem::path(run.path()), limits);
    const TemporaryFile copy;
    file.copyTo(copy.path());
    return opc::inspection::Archive(copy.path(), limits); // which keeps the file open
}

void OpenedPackage::save() {
    const bool abandons = run.options().dryRun;
    try {
        package.close(abandons);
    } catch (...) {
        file.rethrowRefusal();
        throw;
    }
    if (!abandons)
        file.deliver();
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
        throw CLI::ValidationError(argument, "isn't UTF-8");
    return text;
}

} // namespace opctool
