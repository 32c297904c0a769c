#pragma once

#include <opc/scanning/FolderWalk.hpp>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace opctool {

using opc::scanning::FolderWalk;
using opc::scanning::FoundFile;

/// Which packages a command is to read: first those that are named, then those in folders, then those of lists.
struct FileSelection {
    std::vector<std::string> packages; ///< "-" is standard input
    bool takesFolders = false;         ///< whether one of them may be a folder, as the command's own input
    std::vector<std::string> folders;
    std::vector<std::string> extensions; ///< of files in folders; empty: those of known formats
    bool allFiles = false;               ///< in folders, whatever their extension
    std::vector<std::string> lists;      ///< files with names; "-" is standard input
    bool endWithNull = false; ///< the names in lists end with a NUL character instead of a line feed

    /// Whether this can be more than one package. Then output tells which package it is about.
    bool isMany() const { return packages.size() > 1 || !folders.empty() || !lists.empty(); }
};

/// Declares -r, --ext, --all-files, --files-from and -0.
void addSelectionOptions(CLI::App& command, FileSelection& selection);

/// Gives the files of a selection one by one.
class FileNames {
public:
    /// @throws CLI::ValidationError  if two of them want standard input
    explicit FileNames(const FileSelection& selection);
    ~FileNames();

    std::optional<FoundFile> next();

private:
    std::optional<FoundFile> nextOfLists();
    bool openList(const std::string& name);

    const FileSelection& selection;
    std::size_t packages = 0; ///< how many have been given
    std::size_t folders = 0;  ///< how many have been begun
    std::size_t lists = 0;
    std::unique_ptr<FolderWalk> walk;
    std::unique_ptr<std::istream> listFile;
    std::istream* list = nullptr;
};

} // namespace opctool
