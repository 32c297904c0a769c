#pragma once

#include <sys/types.h>

#include <string_view>
#include <vector>

namespace opc::physical::zip {

/// Who may do what with a file: its mode and, if it has one, its POSIX access control list.
class AccessList {
public:
    static constexpr std::string_view ATTRIBUTE = "system.posix_acl_access";

    /// Of the file at `path`, which has that mode.
    static AccessList of(const char* path, mode_t fileMode);

    /// The file has got another group: neither those of the old one nor those of the new one gain by that.
    void meanAnyGroup();

    /// Gives a file the list; without one, takes from it what it has inherited from its folder.
    /// @return false if it can't be done. Then the mode, set on it, would say something else.
    bool setOn(int file) const;

    /// The permissions of the mode that fits.
    mode_t mode() const;

private:
    /// The permissions in the first entry of a kind, such as the one of the file's group; null without it.
    unsigned char* find(unsigned char tag);

    bool readable = true;
    std::vector<unsigned char> bytes; ///< as the attribute holds it; empty: there is no list
    mode_t permissions = 0;
};

} // namespace opc::physical::zip
