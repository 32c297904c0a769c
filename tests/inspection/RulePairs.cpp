#include "RulePairs.hpp"

#include <opc/inspection/Rule.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace opc::test {

namespace {

struct Pairs {
    std::set<std::string> broken, close;
};

Pairs& pairs() {
    static Pairs noted;
    return noted;
}

void addIds(std::string text, std::set<std::string>& ids) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == ',' || c == ';'; }, ' ');
    std::istringstream words(text);
    for (std::string word; words >> word;)
        if (inspection::findRule(word) != nullptr)
            ids.insert(word);
}

class PairCheck final : public ::testing::Environment {
    void TearDown() override {
        const auto& program = *::testing::UnitTest::GetInstance();
        if (program.test_to_run_count() != program.total_test_count())
            return;
        for (const inspection::Rule* rule : inspection::rules()) {
            EXPECT_EQ(pairs().broken.count(std::string(rule->id)), 1U) << "nothing breaks " << rule->id;
            EXPECT_EQ(pairs().close.count(std::string(rule->id)), 1U) << "nothing is close to " << rule->id;
        }
    }
};

const auto* const CHECK = ::testing::AddGlobalTestEnvironment(new PairCheck); // the program owns it

} // namespace

void noteBroken(const std::string& rules) {
    addIds(rules, pairs().broken);
}

void noteClose(const std::string& rules) {
    addIds(rules, pairs().close);
}

std::string noted(const std::string& expected) {
    const std::size_t close = expected.rfind("no ");
    const std::size_t end = close == std::string::npos ? expected.size() : close < 2 ? close : close - 2;
    noteBroken(expected.substr(0, end));
    noteClose(expected.substr(end));
    return expected.substr(0, end);
}

} // namespace opc::test
