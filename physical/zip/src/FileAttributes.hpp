#pragma once

#include <filesystem>
#include <string>

namespace opc::physical::zip {

/// Gives a new file what another one has beside its content: extended attributes, owner, group, access control
/// list and mode, in an order in which nobody may do more with the new file meanwhile than with the old one.
/// What the system refuses to set is left out; then nobody but the new file's owner may do more with it
/// than with the old one. Does nothing if there is no old file.
/// @param file  a descriptor of the new file, which belongs to this process and to no one else to read
void takeAttributes(const std::filesystem::path& old, int file, const std::string& place);

} // namespace opc::physical::zip
