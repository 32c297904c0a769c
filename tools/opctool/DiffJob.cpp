#include "DiffJob.hpp"

#include "FileRun.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/DifferenceJob.hpp>

#include <cstdio>
#include <filesystem>

namespace opctool {

namespace {

namespace fs = std::filesystem;

/// Writes a file that isn't there yet.
void writeNew(const std::string& path, const std::string& text) {
    std::FILE* const file = std::fopen(path.c_str(), "wxe");
    if (file == nullptr)
        throw opc::Exception(path + (fs::exists(path) ? " exists already" : " can't be written"));
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (std::fclose(file) != 0 || !isWritten) {
        std::remove(path.c_str());
        throw opc::Exception(path + " can't be written");
    }
}

} // namespace

bool writeDiffJob(FileRun& run, const opc::inspection::Archive& before, const opc::inspection::Archive& now,
                  const std::vector<std::string>& names, const std::string& path) {
    const opc::inspection::Comparison comparison = compare(before, now, {names, false});
    const bool isPrinted = path == "-";
    const std::string folder = isPrinted ? "" : fs::path(path).filename().string() + ".contents";
    opc::editing::JobContents contents(isPrinted ? fs::path() : fs::path(path).replace_filename(folder),
                                       folder);
    const opc::editing::DifferenceJob made = makeJob(comparison, contents);
    if (isPrinted)
        run.out() << writeJob(made.job);
    else
        writeNew(path, writeJob(made.job));
    contents.stay();
    for (const std::string& line : made.left)
        run.tell("the job leaves " + line);
    return !comparison.isEmpty();
}

} // namespace opctool
