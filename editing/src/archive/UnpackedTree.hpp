#pragma once

#include "archive/FolderTree.hpp"
#include "archive/TreeDescription.hpp"

#include <opc/inspection/Archive.hpp>

#include <optional>
#include <utility>
#include <vector>

namespace opc::editing::archive {

/// What is to become of the items of the original, and what is new, by the files of a folder.
class UnpackedTree {
public:
    struct OldItem {
        enum class Fate { Kept, Replaced, Removed } fate;
        const FolderTree::File* file; ///< null if it has none
    };

    struct NewFile {
        const FolderTree::File* file;
        std::string item;
    };

    /// Compares the files with the original, byte by byte.
    UnpackedTree(const std::filesystem::path& folder, const physical::ZipOptions& limits);

    FolderTree& folder() { return tree; }

    /// Null if the folder doesn't have it.
    const inspection::Archive* original() const { return archive ? &*archive : nullptr; }
    inspection::Archive takeOriginal() { return *std::exchange(archive, std::nullopt); }

    /// Empty if the folder doesn't have it.
    const TreeDescription& description() const { return described; }
    bool isDescribed() const { return hasDescription; }

    /// By place in the directory of the original.
    const std::vector<OldItem>& oldItems() const { return items; }

    /// In the order in which they are to stand in an archive.
    const std::vector<NewFile>& newFiles() const { return added; }

    bool isUntouched() const;

private:
    void readDescription();
    std::vector<std::string> originalFiles() const;
    void compare();
    bool hasSameBytes(const inspection::ArchiveItem& item, const FolderTree::File& file);
    void nameNewFiles(const std::vector<const FolderTree::File*>& unclaimed);

    FolderTree tree;
    std::vector<FolderTree::File> files;
    TreeDescription described;
    bool hasDescription = false;
    std::optional<inspection::Archive> archive;
    std::vector<OldItem> items;
    std::vector<NewFile> added;
    std::vector<unsigned char> block, otherBlock;
};

} // namespace opc::editing::archive
