#pragma once

#include "ByteSource.hpp"

#include <string>

namespace opc::physical::zip {

/// Raises for what begins like a file of a well-known format that is no package: its name says more than what is
/// missing in it to be an archive.
/// @param place  the archive's name for messages
void requireNoForeignFormat(ByteSource& archive, const std::string& place);

} // namespace opc::physical::zip
