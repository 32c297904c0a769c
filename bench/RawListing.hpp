#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// The least that listing a package can cost: its directory, and the content types and relationships parts inflated
/// by zlib and parsed by expat. What they say is collected, the content type of each item is looked up, and nothing is
/// checked.
/// @return how many characters that is
std::size_t listRawPackage(const std::filesystem::path& path);

} // namespace bench
