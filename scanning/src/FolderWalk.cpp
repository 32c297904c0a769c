#include <opc/scanning/FolderWalk.hpp>

#include <algorithm>

#include <strings.h>

namespace opc::scanning {

namespace fs = std::filesystem;

FolderWalk::FolderWalk(const std::string& folder, std::vector<std::string> extensions, bool allFiles)
    : root(folder), extensions(std::move(extensions)), allFiles(allFiles) {
}

std::optional<FoundFile> FolderWalk::next() {
    if (!hasEntered) {
        hasEntered = true;
        std::error_code error;
        if (fs::is_regular_file(root, error))
            return FoundFile{root.generic_string(), {}};
        if (auto failure = enter(root))
            return failure;
    }
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.rest.empty()) {
            levels.pop_back();
            continue;
        }
        const Entry entry = std::move(level.rest.back());
        level.rest.pop_back();
        const fs::path path = level.folder / entry.name;
        if (!entry.isFolder)
            return FoundFile{path.generic_string(), {}};
        if (leadsBack(path))
            continue;
        if (auto failure = enter(path))
            return failure;
    }
    return std::nullopt;
}

/// Whether a link leads to a folder on the way. On Windows the standard library takes links for folders.
bool FolderWalk::leadsBack([[maybe_unused]] const fs::path& folder) const {
#ifdef _WIN32
    return std::any_of(levels.begin(), levels.end(), [&folder](const Level& level) {
        std::error_code ignored; // listing the folder tells it
        return fs::equivalent(level.folder, folder, ignored);
    });
#else
    return false;
#endif
}

/// @return why it can't be listed
std::optional<FoundFile> FolderWalk::enter(const fs::path& folder) {
    Level level{folder, {}};
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    while (!error && entries != fs::directory_iterator()) {
        const fs::directory_entry& entry = *entries;
        std::error_code ignored; // what has no type any more has gone
        const bool isFolder = !entry.is_symlink(ignored) && entry.is_directory(ignored);
        if (isFolder || (isWanted(entry.path()) && entry.is_regular_file(ignored)))
            level.rest.push_back({entry.path().filename().string(), isFolder});
        entries.increment(error);
    }
    std::sort(level.rest.begin(), level.rest.end(),
              [](const Entry& left, const Entry& right) { return left.name > right.name; });
    level.rest.shrink_to_fit();
    levels.push_back(std::move(level));
    if (error)
        return FoundFile{folder.generic_string(), "can't list the folder: " + error.message()};
    return std::nullopt;
}

bool FolderWalk::isWanted(const fs::path& name) const {
    if (allFiles)
        return true;
    const std::string extension = name.extension().string();
    return !extension.empty() &&
           std::any_of(extensions.begin(), extensions.end(), [&extension](const std::string& wanted) {
               return ::strcasecmp(extension.c_str() + 1, wanted.c_str()) == 0;
           });
}

const std::vector<std::string>& knownExtensions() {
    static const std::vector<std::string> known{
        "docx", "docm", "dotx",  "dotm",   "xlsx", "xlsm",       "xlsb", "xltx",       "xltm", "xlam",
        "pptx", "pptm", "potx",  "potm",   "ppsx", "ppsm",       "ppam", "sldx",       "sldm", "thmx",
        "vsdx", "vsdm", "vssx",  "vssm",   "vstx", "vstm",       "glox", "xps",        "oxps", "dwfx",
        "3mf",  "vsix", "nupkg", "snupkg", "appx", "appxbundle", "msix", "msixbundle", "aasx", "fdix"};
    return known;
}

} // namespace opc::scanning
