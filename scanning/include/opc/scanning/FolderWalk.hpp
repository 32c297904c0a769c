#pragma once

#include <opc/scanning/Export.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace opc::scanning {

/// A file to be read, or why there is none of that name.
struct FoundFile {
    std::string path;
    std::string failure; ///< empty if it can be tried
};

/// Gives the files in a folder and the folders in it, sorted by name. It holds the names of the folders on the way,
/// never those of the whole tree. Links to files count as files; links to folders aren't followed, except on Windows if
/// they don't lead back to a folder on the way. The names have slashes between them.
class OPC_SCANNING_EXPORT FolderWalk {
public:
    /// @param folder      one that can't be listed is given as a failure. A file is given as it is
    /// @param extensions  those that are wanted, without a dot; their case doesn't matter
    /// @param allFiles    whether every file is wanted
    FolderWalk(const std::string& folder, std::vector<std::string> extensions, bool allFiles);

    std::optional<FoundFile> next();

private:
    struct Entry {
        std::string name;
        bool isFolder;
    };
    struct Level {
        std::filesystem::path folder;
        std::vector<Entry> rest; ///< sorted backwards: the last is the next
    };

    std::optional<FoundFile> enter(const std::filesystem::path& folder);
    bool leadsBack(const std::filesystem::path& folder) const;
    bool isWanted(const std::filesystem::path& name) const;

    std::filesystem::path root;
    bool hasEntered = false;
    std::vector<std::string> extensions;
    bool allFiles;
    std::vector<Level> levels;
};

/// The extensions of the known formats of packages.
OPC_SCANNING_EXPORT const std::vector<std::string>& knownExtensions();

} // namespace opc::scanning
