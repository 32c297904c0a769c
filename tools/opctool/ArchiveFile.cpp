#include "ArchiveFile.hpp"

#include "FileRun.hpp"

#include <filesystem>
#include <iostream>
#include <iterator>
#include <vector>

namespace opctool {

using opc::inspection::Archive;

Archive openArchive(const FileRun& run) {
    const opc::physical::ZipOptions& limits = run.options().reading.zip;
    if (!run.isStandardInput())
        return Archive(std::filesystem::path(run.path()), limits);
    return Archive(std::vector<unsigned char>(std::istreambuf_iterator<char>(std::cin), {}), limits);
}

} // namespace opctool
