#pragma once

#include <filesystem>

namespace bench {

/// Writes packages like those of real users into a folder. Most are small, have many content types, and lead outside
/// in the usual ways of documents. One has hundreds of items, one has hundreds of overrides. The texts have the
/// layout of the programs that write such packages.
void writeRealShapes(const std::filesystem::path& folder);

} // namespace bench
