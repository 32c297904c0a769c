#include "FileAttributes.hpp"

#include "AccessList.hpp"
#include "zip/src/Failure.hpp"

#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include "zip/src/SystemFiles.hpp"
#include <copyfile.h>
#else
#include <linux/limits.h>
#include <sys/xattr.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

namespace opc::physical::zip {

namespace {

/// Whether the system can't or won't set an attribute; false for a real failure.
bool isRefusal(int error) {
    constexpr int REFUSALS[] = {EPERM, EACCES, EINVAL, ENOTSUP, ENOSYS, E2BIG};
    return std::find(std::begin(REFUSALS), std::end(REFUSALS), error) != std::end(REFUSALS);
}

/// Throws unless a call has succeeded or was refused.
/// @return whether it has succeeded
bool succeeded(int result, const std::string& place, const char* what) {
    if (result == 0)
        return true;
    if (!isRefusal(errno))
        failSystem(place, what, errno);
    return false;
}

#ifdef __APPLE__
/// Takes the access list, too.
void takeExtendedAttributes(const char* old, int file, const std::string& place) {
    FileDescriptor source;
    if (openForReading(old, source) == 0)
        succeeded(::fcopyfile(source.get(), file, nullptr, COPYFILE_XATTR | COPYFILE_ACL), place,
                  "can't keep the extended attributes");
}
#else
/// These aren't true for the new content: hashes, and what a program may do.
bool concernsContent(std::string_view attribute) {
    constexpr std::string_view NAMES[] = {"security.capability", "security.evm", "security.ima"};
    return std::find(std::begin(NAMES), std::end(NAMES), attribute) != std::end(NAMES);
}

void takeExtendedAttributes(const char* old, int file, const std::string& place) {
    std::vector<char> names(XATTR_LIST_MAX);
    std::vector<char> value(XATTR_SIZE_MAX);
    const ssize_t length = ::listxattr(old, names.data(), names.size());
    for (const char* name = names.data(); name - names.data() < length; name += std::strlen(name) + 1) {
        if (name == AccessList::ATTRIBUTE || concernsContent(name))
            continue;
        const ssize_t size = ::getxattr(old, name, value.data(), value.size());
        if (size >= 0)
            succeeded(::fsetxattr(file, name, value.data(), static_cast<std::size_t>(size), 0), place,
                      "can't keep the extended attributes");
    }
}
#endif

/// @return which of them the file has got
struct stat takeOwnership(const struct stat& old, int file, const std::string& place) {
    // The new owner must never be able to do more with it than with the old file.
    succeeded(::fchmod(file, old.st_mode & S_IRWXU), place, "can't keep the permissions");
    // Only root may give a file away. Others may still give it to one of their groups.
    if (!succeeded(::fchown(file, old.st_uid, old.st_gid), place, "can't keep the owner"))
        succeeded(::fchown(file, static_cast<uid_t>(-1), old.st_gid), place, "can't keep the group");
    struct stat now {};
    if (::fstat(file, &now) != 0)
        failSystem(place, "can't keep the owner", errno);
    return now;
}

void takePermissions(const char* path, const struct stat& old, int file, const std::string& place) {
    const struct stat now = takeOwnership(old, file, place);
    const bool sameGroup = now.st_gid == old.st_gid;
    mode_t special = old.st_mode & (S_ISUID | S_ISGID | S_ISVTX);
    if (now.st_uid != old.st_uid)
        special &= ~static_cast<mode_t>(S_ISUID);
    if (!sameGroup)
        special &= ~static_cast<mode_t>(S_ISGID);

    AccessList list = AccessList::of(path, old.st_mode);
    if (!sameGroup)
        list.meanAnyGroup();
    // The list also kept people out. If it can't be set, only the owner keeps access.
    const bool kept = list.setOn(file);
    const mode_t mode = list.mode() & (kept ? ACCESSPERMS : S_IRWXU);
    succeeded(::fchmod(file, mode | special), place, "can't keep the permissions");
}

} // namespace

void takeAttributes(const std::filesystem::path& old, int file, const std::string& place) {
    struct stat status {};
    if (::stat(old.c_str(), &status) != 0)
        return;
    takeExtendedAttributes(old.c_str(), file, place);
    takePermissions(old.c_str(), status, file, place);
}

} // namespace opc::physical::zip
