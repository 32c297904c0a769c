#include "ArchiveFile.hpp"

#include "FileRun.hpp"

#include <opc/editing/ArchiveWriting.hpp>

#include <filesystem>
#include <iostream>
#include <iterator>
#include <vector>

namespace opctool {

using opc::inspection::Archive;

namespace {

Archive open(const std::string& path, const opc::physical::ZipOptions& limits) {
    if (path != "-")
        return Archive(std::filesystem::path(path), limits);
    return Archive(std::vector<unsigned char>(std::istreambuf_iterator<char>(std::cin), {}), limits);
}

} // namespace

Archive openArchive(const FileRun& run) {
    return openArchive(run.path(), run.options().reading);
}

Archive openArchive(const std::string& path, const ReadOptions& options) {
    opc::physical::ZipOptions limits = options.zip;
    limits.lenient = !options.strict;
    return open(path, limits);
}

Archive openToInspect(const FileRun& run) {
    return open(run.path(), run.options().reading.zip);
}

void deliver(const FileRun& run, const Archive& made, const opc::physical::FileState& read) {
    const std::string target = run.target();
    if (run.options().dryRun)
        return;
    if (target == "-")
        opc::editing::writeTo(std::cout, made);
    else if (!target.empty())
        opc::editing::writeTo(std::filesystem::path(target), made);
    else
        opc::editing::writeBack(run.path(), made, read);
}

opc::inspection::InspectionOptions optionsForNewErrors(const FileRun& run) {
    opc::inspection::InspectionOptions options;
    options.limits = run.options().reading.zip;
    options.mostFindingsOfARule = std::size_t{1} << 20U;
    return options;
}

} // namespace opctool
