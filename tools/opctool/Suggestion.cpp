#include "Suggestion.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace opctool {

namespace {

/// The number of letters that are missing, too many, wrong or swapped with their neighbour.
std::size_t distance(const std::string& left, const std::string& right) {
    std::vector<std::size_t> beforeLast(right.size() + 1);
    std::vector<std::size_t> last(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t wrong = left[i - 1] == right[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + wrong});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

} // namespace

std::string findClosest(const std::string& word, const std::vector<std::string>& candidates) {
    constexpr std::size_t LONGEST = 40; // no name is longer
    if (word.size() > LONGEST)
        return {};
    std::string closest;
    std::size_t least = word.size() / 3 + 2;
    for (const std::string& candidate : candidates) {
        const std::size_t steps = distance(word, candidate);
        if (steps < least && steps < candidate.size()) {
            least = steps;
            closest = candidate;
        }
    }
    return closest;
}

} // namespace opctool
