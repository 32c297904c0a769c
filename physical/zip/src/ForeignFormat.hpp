#pragma once

#include "ByteSource.hpp"

#include <string>

namespace opc::physical::zip {

/// Throws if the bytes begin like a well-known format that is no package. The name of that format says more than what
/// the bytes lack to be an archive.
/// @param place  the archive's name for messages
void requireNoForeignFormat(ByteSource& archive, const std::string& place);

} // namespace opc::physical::zip
