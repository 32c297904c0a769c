#include "ArchiveFile.hpp"

#include "FileRun.hpp"

#include <filesystem>
#include <iostream>
#include <iterator>
#include <vector>

namespace opctool {

using opc::inspection::Archive;

Archive openArchive(const FileRun& run) {
    return openArchive(run.path(), run.options().reading);
}

Archive openArchive(const std::string& path, const ReadOptions& options) {
    if (path != "-")
        return Archive(std::filesystem::path(path), options.zip);
    return Archive(std::vector<unsigned char>(std::istreambuf_iterator<char>(std::cin), {}), options.zip);
}

} // namespace opctool
