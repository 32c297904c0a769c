#include "comparison/TextLines.hpp"

#include <algorithm>
#include <numeric>

namespace opc::inspection {

namespace {

constexpr std::size_t LARGEST_TEXT = 32U << 20;
constexpr std::size_t MOST_LINES = 1'000'000;

/// Lines of both texts, without those at their beginnings and ends that are the same.
struct Middle {
    std::size_t begin, beforeEnd, nowEnd;
};

Middle findMiddle(const TextLines& before, const TextLines& now) {
    Middle middle{0, before.count(), now.count()};
    while (middle.begin < middle.beforeEnd && middle.begin < middle.nowEnd &&
           before.line(middle.begin) == now.line(middle.begin))
        ++middle.begin;
    while (middle.begin < middle.beforeEnd && middle.begin < middle.nowEnd &&
           before.line(middle.beforeEnd - 1) == now.line(middle.nowEnd - 1)) {
        --middle.beforeEnd;
        --middle.nowEnd;
    }
    return middle;
}

/// Numbers lines by sorting them: a table of hashes can be made slow on purpose.
LineNumbers numberLines(const std::vector<std::string_view>& lines) {
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&lines](std::size_t left, std::size_t right) { return lines[left] < lines[right]; });
    LineNumbers numbers(lines.size());
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i > 0 && lines[order[i]] != lines[order[i - 1]])
            ++number;
        numbers[order[i]] = number;
    }
    return numbers;
}

} // namespace

void TextLines::onLine(std::string_view line) {
    if (line.size() > LARGEST_TEXT - text.size() || ends.size() == MOST_LINES)
        throw Full{};
    text += line;
    ends.push_back(text.size());
}

LineDifference compareTexts(const TextLines& before, const TextLines& now) {
    const Middle middle = findMiddle(before, now);
    std::vector<std::string_view> lines;
    for (std::size_t i = middle.begin; i < middle.beforeEnd; ++i)
        lines.push_back(before.line(i));
    for (std::size_t i = middle.begin; i < middle.nowEnd; ++i)
        lines.push_back(now.line(i));
    const LineNumbers numbers = numberLines(lines);
    const auto split = numbers.begin() + static_cast<std::ptrdiff_t>(middle.beforeEnd - middle.begin);
    LineDifference found = compareLines({numbers.begin(), split}, {split, numbers.end()});
    found.before.insert(found.before.begin(), middle.begin, false);
    found.now.insert(found.now.begin(), middle.begin, false);
    found.before.resize(before.count());
    found.now.resize(now.count());
    return found;
}

} // namespace opc::inspection
