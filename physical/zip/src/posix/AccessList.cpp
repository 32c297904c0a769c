#include "AccessList.hpp"

#include <sys/stat.h>

#ifdef __linux__
#include <linux/limits.h>
#include <sys/xattr.h>
#endif

#include <cerrno>

namespace opc::physical::zip {

namespace {

// The format of the attribute: a version of four bytes, then entries of eight bytes with tag, permissions and ID.
constexpr std::size_t HEAD = 4;
constexpr std::size_t ENTRY = 8;
constexpr std::size_t PERMISSIONS = 2; ///< in an entry, low byte first
constexpr unsigned char GROUP = 0x04;
constexpr unsigned char MASK = 0x10;
constexpr unsigned char OTHER = 0x20;

[[maybe_unused]] bool saysThereIsNone(int error) {
    return error == ENODATA || error == ENOTSUP || error == ENOSYS;
}

} // namespace

AccessList AccessList::of([[maybe_unused]] const char* path, mode_t fileMode) {
    AccessList list;
    list.permissions = fileMode & ACCESSPERMS;
#ifdef __linux__
    list.bytes.resize(XATTR_SIZE_MAX);
    const ssize_t size = ::getxattr(path, ATTRIBUTE.data(), list.bytes.data(), list.bytes.size());
    list.readable = size >= 0 || saysThereIsNone(errno);
    list.bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
#endif
    return list;
}

unsigned char* AccessList::find(unsigned char tag) {
    for (std::size_t at = HEAD; at + ENTRY <= bytes.size(); at += ENTRY)
        if (bytes[at] == tag)
            return &bytes[at + PERMISSIONS];
    return nullptr;
}

void AccessList::meanAnyGroup() {
    unsigned char* const group = find(GROUP);
    unsigned char* const other = find(OTHER);
    const unsigned char* const mask = find(MASK);
    if (group && other)
        *group = *other = *group & *other & (mask ? *mask : S_IRWXO);
    // Without a list, the group bits of the mode are the group's permissions. With a list, they are the mask.
    const mode_t common = group && other ? *other : (permissions >> 3U) & permissions & S_IRWXO;
    const mode_t groupBits = mask ? permissions & S_IRWXG : common << 3U;
    permissions = (permissions & S_IRWXU) | groupBits | common;
}

bool AccessList::setOn([[maybe_unused]] int file) const {
#ifdef __linux__
    if (!bytes.empty())
        return ::fsetxattr(file, ATTRIBUTE.data(), bytes.data(), bytes.size(), 0) == 0;
    return readable && (::fremovexattr(file, ATTRIBUTE.data()) == 0 || saysThereIsNone(errno));
#else
    return true;
#endif
}

mode_t AccessList::mode() const {
    return permissions;
}

} // namespace opc::physical::zip
