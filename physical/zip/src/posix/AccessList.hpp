#pragma once

#include <sys/types.h>

#include <string_view>
#include <vector>

namespace opc::physical::zip {

/// Who may do what with a file: its mode and, if it has one, its POSIX access control list.
class AccessList {
public:
    static constexpr std::string_view ATTRIBUTE = "system.posix_acl_access";

    /// Reads the list of the file at `path`, which has the mode `mode`.
    static AccessList of(const char* path, mode_t fileMode);

    /// Call it after the group of the file changes. Neither the old nor the new group gains permissions.
    void meanAnyGroup();

    /// Sets the list of a file. Without a list, removes the one that the file has inherited from its folder.
    /// @return false if that fails. Then the mode of this object would mean something else if it were set
    bool setOn(int file) const;

    /// The mode that fits this list.
    mode_t mode() const;

private:
    /// The permissions in the first entry of a kind, such as the entry of the file's group; null if there is none.
    unsigned char* find(unsigned char tag);

    bool readable = true;
    std::vector<unsigned char> bytes; ///< in the format of the attribute; empty if there is no list
    mode_t permissions = 0;
};

} // namespace opc::physical::zip
