#pragma once

#include "archive/FolderCalls.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace opc::editing::archive {

/// The folder in an unpacked package that isn't part of it.
constexpr char OWN_FOLDER[] = ".opctool";

/// A folder with files and folders in it, which may come from strangers: no link is followed, and nothing outside is read
/// or written. Paths are relative to it, with slashes. Failures are `opc::Exception` with the code of the system.
class FolderTree {
public:
    struct File {
        std::string path;
        std::uint64_t size;
    };

    /// Opens a folder.
    explicit FolderTree(std::filesystem::path folder);

    /// Makes a folder, or takes an empty one, or any with `isForced`.
    static FolderTree make(const std::filesystem::path& folder, bool isForced);

    /// Throws where `make` would throw because of what is there already.
    static void requireFree(const std::filesystem::path& folder, bool isForced);

    /// All files that aren't the tool's own or those of Git, sorted by their paths.
    /// @throws opc::Exception  there is something else than files and folders
    std::vector<File> list() const;

    /// Opens a file for reading.
    FileDescriptor open(const std::string& path);

    /// Makes a file, and folders on the way. A file that is there already is replaced.
    FileDescriptor create(const std::string& path);

    /// Removes a file that this object has made.
    void remove(const std::string& path);

    bool has(const std::string& path);

    /// Removes what this object has made, and leaves the rest.
    void removeMade() noexcept;

    /// How messages name a file.
    std::string place(const std::string& path) const;

private:
    struct Level {
        std::string name;
        FileDescriptor folder;
    };

    /// The folder that a path leads through, opened. Neighbours are mostly used one after the other, so it stays open.
    const FileDescriptor& enter(const std::string& path, bool makes);
    void goDown(const std::string& name, const std::string& path, bool makes);

    std::filesystem::path root;
    FileDescriptor top;
    std::vector<Level> levels; ///< from the top to where the last path was
    std::vector<std::string> madeFiles, madeFolders;
    bool hasMadeRoot = false;
};

} // namespace opc::editing::archive
