#include <opc/inspection/Rule.hpp>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace opc::inspection {
namespace {

TEST(Rules, eachHasItsOwnIdAndAllTexts) {
    std::set<std::string_view> ids;
    for (const Rule* rule : rules()) {
        SCOPED_TRACE(std::string(rule->id));
        EXPECT_TRUE(ids.insert(rule->id).second);
        EXPECT_EQ(findRule(rule->id), rule);
        for (const std::string_view text :
             {rule->title, rule->statement, rule->cause, rule->readers, rule->remedy})
            EXPECT_FALSE(text.empty());
        EXPECT_NE(rule->profiles & EVERY_PROFILE, 0U);
    }
    EXPECT_EQ(findRule("no such rule"), nullptr);
    EXPECT_EQ(findRules("m3.5"), std::vector<const Rule*>{findRule("M1.2")});
    EXPECT_EQ(findRules("M3.13"), (std::vector<const Rule*>{findRule("M3.3"), findRule("M3.14")}));
    EXPECT_TRUE(findRules("M2").empty());
}

} // namespace
} // namespace opc::inspection
