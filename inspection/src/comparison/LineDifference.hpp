#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace opc::inspection {

/// Lines by number: those that are the same have the same number.
using LineNumbers = std::vector<std::uint32_t>;

/// Which lines of two texts are in one of them only.
struct LineDifference {
    std::vector<bool> before, now;
};

/// Compares two texts by Myers' algorithm in linear space. Where they have little in common, it settles for a difference
/// that isn't the least, so that time grows little faster than the number of lines.
LineDifference compareLines(const LineNumbers& before, const LineNumbers& now);

} // namespace opc::inspection
