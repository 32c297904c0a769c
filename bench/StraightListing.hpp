#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// Lists a package as a careful program does that writes it down straight away: an inflater for each document, whose
/// checksum is checked, a parser for each, maps of items, content types and relationships by their sources, and
/// extensions without regard to case. `listRawPackage` does the same with all of that left out or taken together.
/// @return how many characters that is
std::size_t listStraightforwardly(const std::filesystem::path& path);

} // namespace bench
