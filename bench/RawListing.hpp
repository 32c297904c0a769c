#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// The least work of listing a package: it reads the directory, inflates the content types and relationships parts
/// with zlib, parses them with expat, collects their values, and looks up the content type of each item. Checks
/// nothing.
/// @return the number of characters of the result
std::size_t listRawPackage(const std::filesystem::path& path);

} // namespace bench
