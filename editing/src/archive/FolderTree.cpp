#include "archive/FolderTree.hpp"

#include "zip/src/Failure.hpp"

#include <opc/core/Exception.hpp>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

namespace opc::editing::archive {

using physical::zip::fail;
using physical::zip::failSystem;
using physical::zip::FileDescriptor;

namespace {

constexpr int FOLDER = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t MOST_LEVELS = 256;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

/// What Git keeps in its work tree.
bool isOfGit(const std::string& name) {
    return name == ".git" || name == ".gitattributes" || name == ".gitignore" || name == ".gitmodules" ||
           name == ".gitkeep";
}

class Walk {
public:
    explicit Walk(const FolderTree& tree) : tree(tree) {}

    std::vector<FolderTree::File> files;

    void visit(FileDescriptor folder, const std::string& path, std::size_t depth) {
        if (depth > MOST_LEVELS)
            fail(tree.place(path), "too many folders in each other", ELOOP);
        const Folder opened(::fdopendir(::dup(folder.get())));
        if (!opened)
            failSystem(tree.place(path), "can't read the folder", errno);
        for (errno = 0; const dirent* entry = ::readdir(opened.get()); errno = 0) {
            const std::string name = entry->d_name;
            if (name == "." || name == ".." || isOfGit(name) || (depth == 0 && name == OWN_FOLDER))
                continue;
            take(folder, name, path + name, depth);
        }
        if (errno != 0)
            failSystem(tree.place(path), "can't read the folder", errno);
    }

private:
    void take(const FileDescriptor& folder, const std::string& name, const std::string& path,
              std::size_t depth) {
        struct stat status {};
        if (::fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            failSystem(tree.place(path), "can't be read", errno);
        if (S_ISREG(status.st_mode)) {
            files.push_back({path, static_cast<std::uint64_t>(status.st_size)});
        } else if (S_ISDIR(status.st_mode)) {
            FileDescriptor below(::openat(folder.get(), name.c_str(), FOLDER));
            if (!below.isOpen())
                failSystem(tree.place(path), "can't open the folder", errno);
            visit(std::move(below), path + '/', depth + 1);
        } else {
            fail(tree.place(path), "is neither a file nor a folder; links aren't followed", ELOOP);
        }
    }

    const FolderTree& tree;
};

} // namespace

FolderTree::FolderTree(std::filesystem::path folder)
    : root(std::move(folder)), top(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!top.isOpen())
        failSystem(root.string(), "can't open the folder", errno);
}

FolderTree FolderTree::make(const std::filesystem::path& folder, bool isForced) {
    const bool isNew = ::mkdir(folder.c_str(), 0777) == 0;
    if (!isNew && errno != EEXIST)
        failSystem(folder.string(), "can't make the folder", errno);
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
    walk.visit(FileDescriptor(::openat(top.get(), ".", FOLDER)), "", 0);
    std::sort(walk.files.begin(), walk.files.end(),
              [](const File& left, const File& right) { return left.path < right.path; });
    return std::move(walk.files);
}

FileDescriptor FolderTree::open(const std::string& path) {
    const int folder = enter(path, false);
    FileDescriptor file(
        ::openat(folder, path.c_str() + path.rfind('/') + 1, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        failSystem(place(path), "can't be read", errno);
    if (!S_ISREG(status.st_mode))
        fail(place(path), "is no file", EINVAL);
    return file;
}

FileDescriptor FolderTree::create(const std::string& path) {
    const int folder = enter(path, true);
    const char* const name = path.c_str() + path.rfind('/') + 1;
    constexpr int FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor file(::openat(folder, name, FLAGS, 0666));
    const bool isNew = file.isOpen();
    if (!isNew && errno == EEXIST && ::unlinkat(folder, name, 0) == 0)
        file = FileDescriptor(::openat(folder, name, FLAGS, 0666));
    if (!file.isOpen())
        failSystem(place(path), "can't be made", errno);
    if (isNew) // what it replaces, it doesn't take away if a later file fails
        madeFiles.push_back(path);
    return file;
}

void FolderTree::remove(const std::string& path) {
    if (::unlinkat(enter(path, false), path.c_str() + path.rfind('/') + 1, 0) != 0)
        failSystem(place(path), "can't be removed", errno);
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

int FolderTree::enter(const std::string& path, bool makes) {
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
    return levels.empty() ? top.get() : levels.back().folder.get();
}

void FolderTree::goDown(const std::string& name, const std::string& path, bool makes) {
    const int above = levels.empty() ? top.get() : levels.back().folder.get();
    if (makes && ::mkdirat(above, name.c_str(), 0777) == 0)
        madeFolders.push_back(path);
    else if (makes && errno != EEXIST)
        failSystem(place(path), "can't make the folder", errno);
    FileDescriptor folder(::openat(above, name.c_str(), FOLDER));
    if (!folder.isOpen())
        failSystem(place(path), "can't open the folder", errno);
    levels.push_back({name, std::move(folder)});
}

void FolderTree::removeMade() noexcept {
    levels.clear();
    const auto remove = [&](std::vector<std::string>& paths, int flags) {
        for (; !paths.empty(); paths.pop_back())
            try {
                const int folder = enter(paths.back(), false);
                ::unlinkat(folder, paths.back().c_str() + paths.back().rfind('/') + 1, flags);
            } catch (const std::exception&) {
                // Somebody else has taken it away.
            }
    };
    remove(madeFiles, 0);
    remove(madeFolders, AT_REMOVEDIR);
    if (hasMadeRoot)
        ::rmdir(root.c_str());
}

std::string FolderTree::place(const std::string& path) const {
    return (root / path).string();
}

} // namespace opc::editing::archive
