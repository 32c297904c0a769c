#pragma once

#include <filesystem>
#include <string>

namespace opc::physical::zip {

/// Gives a new file the attributes of another one: extended attributes, owner, group, access control list and mode.
/// The order ensures that nobody can meanwhile do more with the new file than with the old one. Leaves out what the
/// system refuses to set; then only the owner of the new file may do more with it than with the old one. Does nothing
/// if there is no old file.
/// @param file  a descriptor of the new file, which belongs to this process and which nobody else can read
void takeAttributes(const std::filesystem::path& old, int file, const std::string& place);

} // namespace opc::physical::zip
