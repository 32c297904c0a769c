#include "archive/FolderTree.hpp"

#include "zip/src/Failure.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace opc::editing::archive {

using physical::zip::fail;
using physical::zip::failSystem;

namespace {

constexpr std::size_t MOST_LEVELS = 256;

std::string nameIn(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// What Git keeps in its work tree.
bool isOfGit(const std::string& name) {
    return name == ".git" || name == ".gitattributes" || name == ".gitignore" || name == ".gitmodules" ||
           name == ".gitkeep";
}

class Walk {
public:
    explicit Walk(const FolderTree& tree) : tree(tree) {}

    std::vector<FolderTree::File> files;

    void visit(const FileDescriptor& folder, const std::string& path, std::size_t depth) {
        if (depth > MOST_LEVELS)
            fail(tree.place(path), "too many folders in each other", ELOOP);
        std::vector<std::string> names;
        if (const int error = listNames(folder, names))
            failSystem(tree.place(path), "can't read the folder", error);
        for (const std::string& name : names)
            if (!isOfGit(name) && (depth > 0 || name != OWN_FOLDER))
                take(folder, name, path + name, depth);
    }

private:
    void take(const FileDescriptor& folder, const std::string& name, const std::string& path,
              std::size_t depth) {
        EntryStatus status;
        if (const int error = readStatusIn(folder, name, status))
            failSystem(tree.place(path), "can't be read", error);
        if (status.kind == EntryKind::File) {
            files.push_back({path, status.size});
        } else if (status.kind == EntryKind::Folder) {
            FileDescriptor below;
            if (const int error = openFolderIn(folder, name, below))
                failSystem(tree.place(path), "can't open the folder", error);
            visit(below, path + '/', depth + 1);
        } else {
            fail(tree.place(path), "is neither a file nor a folder; links aren't followed", ELOOP);
        }
    }

    const FolderTree& tree;
};

} // namespace

FolderTree::FolderTree(std::filesystem::path folder) : root(std::move(folder)) {
    if (const int error = openFolder(root, top))
        failSystem(root.string(), "can't open the folder", error);
}

FolderTree FolderTree::make(const std::filesystem::path& folder, bool isForced) {
    std::error_code error;
    const bool isNew = std::filesystem::create_directory(folder, error);
    if (error && error != std::errc::file_exists)
        failSystem(folder.string(), "can't make the folder", error.default_error_condition().value());
    if (!isNew)
        requireFree(folder, isForced);
    FolderTree tree(folder);
    tree.hasMadeRoot = isNew;
    return tree;
}

void FolderTree::requireFree(const std::filesystem::path& folder, bool isForced) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(folder, error);
    if (!std::filesystem::exists(status))
        return;
    if (!std::filesystem::is_directory(status))
        failSystem(folder.string(), "can't open the folder", ENOTDIR);
    if (!isForced && !std::filesystem::is_empty(folder, error))
        fail(folder.string(), "the folder isn't empty", ENOTEMPTY);
}

std::vector<FolderTree::File> FolderTree::list() const {
    Walk walk(*this);
    walk.visit(top, "", 0);
    std::sort(walk.files.begin(), walk.files.end(),
              [](const File& left, const File& right) { return left.path < right.path; });
    return std::move(walk.files);
}

FileDescriptor FolderTree::open(const std::string& path) {
    FileDescriptor file;
    EntryStatus status;
    int error = openFileIn(enter(path, false), nameIn(path), file);
    if (error == 0)
        error = readStatusOf(file, status);
    if (error != 0)
        failSystem(place(path), "can't be read", error);
    if (status.kind != EntryKind::File)
        fail(place(path), "is no file", EINVAL);
    return file;
}

FileDescriptor FolderTree::create(const std::string& path) {
    const FileDescriptor& folder = enter(path, true);
    const std::string name = nameIn(path);
    FileDescriptor file;
    int error = makeFileIn(folder, name, file);
    const bool isNew = error == 0;
    if (error == EEXIST && (error = removeFileIn(folder, name)) == 0)
        error = makeFileIn(folder, name, file);
    if (error != 0)
        failSystem(place(path), "can't be made", error);
    if (isNew) // what it replaces, it doesn't take away if a later file fails
        madeFiles.push_back(path);
    return file;
}

void FolderTree::remove(const std::string& path) {
    if (const int error = removeFileIn(enter(path, false), nameIn(path)))
        failSystem(place(path), "can't be removed", error);
}

bool FolderTree::has(const std::string& path) {
    try {
        open(path);
        return true;
    } catch (const Exception& e) {
        if (e.code().value() == ENOENT)
            return false;
        throw;
    }
}

const FileDescriptor& FolderTree::enter(const std::string& path, bool makes) {
    std::size_t start = 0;
    std::size_t depth = 0;
    for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', start)) {
        const std::string name = path.substr(start, end - start);
        if (depth == levels.size() || levels[depth].name != name) {
            levels.resize(depth);
            goDown(name, path.substr(0, end), makes);
        }
        ++depth;
        start = end + 1;
    }
    levels.resize(depth);
    return levels.empty() ? top : levels.back().folder;
}

void FolderTree::goDown(const std::string& name, const std::string& path, bool makes) {
    const FileDescriptor& above = levels.empty() ? top : levels.back().folder;
    const int made = makes ? makeFolderIn(above, name) : EEXIST;
    if (made == 0)
        madeFolders.push_back(path);
    else if (made != EEXIST)
        failSystem(place(path), "can't make the folder", made);
    FileDescriptor folder;
    if (const int error = openFolderIn(above, name, folder))
        failSystem(place(path), "can't open the folder", error);
    levels.push_back({name, std::move(folder)});
}

void FolderTree::removeMade() noexcept {
    levels.clear();
    const auto remove = [&](std::vector<std::string>& paths, const auto& removeIn) {
        for (; !paths.empty(); paths.pop_back())
            try {
                removeIn(enter(paths.back(), false), nameIn(paths.back()));
            } catch (const std::exception&) {
                // Somebody else has taken it away.
            }
    };
    remove(madeFiles, removeFileIn);
    remove(madeFolders, removeFolderIn);
    levels.clear();
    if (hasMadeRoot) {
        top = FileDescriptor(); // some systems keep a folder that is open
        std::error_code ignored;
        std::filesystem::remove(root, ignored);
    }
}

std::string FolderTree::place(const std::string& path) const {
    return (root / path).string();
}

} // namespace opc::editing::archive
