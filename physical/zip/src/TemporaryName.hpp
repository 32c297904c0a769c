#pragma once

#include <string>

namespace opc::physical::zip {

/// The name of the new file that will replace another one. It depends only on that file's name, so that a later save
/// finds what a dead process has left.
/// @param target   the other file's name
/// @param number   0, or a higher number if the earlier names are taken
/// @param longest  how many bytes the file system allows in a name; longer names are shortened
std::string temporaryName(const std::string& target, unsigned number, std::size_t longest);

} // namespace opc::physical::zip
