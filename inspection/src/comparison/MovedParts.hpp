#pragma once

#include <opc/inspection/Comparison.hpp>

#include <string>
#include <utility>
#include <vector>

namespace opc::inspection {

/// Makes one difference, a move, of a part that was removed and one that was added with the same content. An empty part has
/// nothing by which it could be recognised.
/// @return the old and the new names
std::vector<std::pair<std::string, std::string>> joinMoves(std::vector<ContentDifference>& parts);

} // namespace opc::inspection
