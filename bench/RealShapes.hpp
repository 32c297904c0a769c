#pragma once

#include <filesystem>

namespace bench {

/// Writes packages as people have them into a folder: most are small, have many content types, and lead outside in the
/// ways that documents do. One has hundreds of items, one hundreds of overrides. The texts are laid out as the
/// programs lay them out that write such packages.
void writeRealShapes(const std::filesystem::path& folder);

} // namespace bench
