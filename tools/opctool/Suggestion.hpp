#pragma once

#include <string>
#include <vector>

namespace opctool {

/// The candidate that a mistyped word means most likely: it takes the fewest letters that are missing, too many, wrong or
/// swapped. Empty if none is close.
std::string findClosest(const std::string& word, const std::vector<std::string>& candidates);

} // namespace opctool
