#pragma once

#include <string>

namespace opc::physical::zip {

/// The name of the file in the making that is to replace another one. It follows from that one's name, so
/// that a later saving finds what a process that died has left.
/// @param target   the other file's name
/// @param number   0, and more for further names if that one is taken
/// @param longest  how many bytes the folder's file system lets a name have; what is too long is shortened
std::string temporaryName(const std::string& target, unsigned number, std::size_t longest);

} // namespace opc::physical::zip
