#include "comparison/LineDifference.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace opc::inspection {
namespace {

LineNumbers kept(const LineNumbers& lines, const std::vector<bool>& differ) {
    LineNumbers result;
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (!differ[i])
            result.push_back(lines[i]);
    return result;
}

/// The length of the longest common subsequence, the plain way.
std::size_t longestCommon(const LineNumbers& left, const LineNumbers& right) {
    std::vector<std::size_t> row(right.size() + 1);
    for (const std::uint32_t line : left)
        for (std::size_t i = 1, diagonal = 0; i < row.size(); ++i) {
            const std::size_t above = row[i];
            row[i] = line == right[i - 1] ? diagonal + 1 : std::max(above, row[i - 1]);
            diagonal = above;
        }
    return row.back();
}

class Lines {
public:
    LineNumbers make(std::size_t most, std::uint32_t alphabet) {
        LineNumbers lines(random() % (most + 1));
        for (std::uint32_t& line : lines)
            line = static_cast<std::uint32_t>(random() % alphabet);
        return lines;
    }

private:
    std::mt19937 random{7};
};

TEST(LineDifference, isTheLeastOfShortTexts) {
    Lines lines;
    for (int i = 0; i < 20'000; ++i) {
        const LineNumbers before = lines.make(14, 1 + static_cast<std::uint32_t>(i) % 5);
        const LineNumbers now = lines.make(14, 1 + static_cast<std::uint32_t>(i) % 5);
        const LineDifference difference = compareLines(before, now);
        const LineNumbers common = kept(before, difference.before);
        ASSERT_EQ(common, kept(now, difference.now));
        ASSERT_EQ(common.size(), longestCommon(before, now));
    }
}

TEST(LineDifference, ofVeryDifferentTextsIsFoundInTimeAndKeepsMuch) {
    Lines lines;
    for (const std::uint32_t alphabet : {2U, 50U, 1'000'000U}) {
        const LineNumbers before = lines.make(300'000, alphabet);
        const LineNumbers now = lines.make(300'000, alphabet);
        const LineDifference difference = compareLines(before, now);
        const LineNumbers common = kept(before, difference.before);
        ASSERT_EQ(common, kept(now, difference.now));
        EXPECT_GE(common.size(), alphabet == 2 ? std::min(before.size(), now.size()) / 2 : 0);
    }
}

} // namespace
} // namespace opc::inspection
