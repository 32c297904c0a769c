#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// Lists a package like a careful but straightforward program. Each document has an inflater, a check of the
/// checksum, and a parser. Maps hold items, content types, and relationships by their sources, and extensions ignore
/// letter case. `listRawPackage` leaves all of that out or combines it.
/// @return the number of characters of the result
std::size_t listStraightforwardly(const std::filesystem::path& path);

} // namespace bench
