#include "content/ControlSearch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using opc::standard_signatures::ControlSearch;

const std::string SPACE(300, ' ');
const std::string CONTROL = "<w:dataBinding/>";

TEST(ControlSearch, tellsOnlyContentsInWhichNoProgramFindsAControl) {
    const struct {
        std::string content;
        bool isWithout;
    } cases[] = {
        {"<a/>", true},
        {"\xEF\xBB\xBF<a/>", true},
        {"<?xml version=\"1.0\"?><a/>", true},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><a/>", true},
        {"<?xml version=\"1.0\" encoding=\"utf-8\"?><a/>", true},
        {"<a>" + SPACE + "</a>", true},
        {CONTROL, false},
        {"<a>" + SPACE + CONTROL + SPACE + "</a>", false},
        {"<!DOCTYPE a><a/>", false}, // whose entities can have elements
        {"<a>" + SPACE + "<!DOCTYPE a>", false},
        {"", false},
        {"<", false},
        {" <a/>", false},
        {"text", false},
        {std::string("<\0a\0/\0>\0", 8), false},
        {std::string("\xFF\xFE<\0a\0/\0>\0", 10), false},
        {"\x4C\x6F\xA7\x94", false}, // in EBCDIC
        {"<\xC4/>", false},
        {"<?xml version=\"1.0\" encoding=\"UTF-7\"?><a/>", false},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\" encoding=\"UTF-7\"?><a/>", false},
        {"<?xml version=\"1.0\" encoding=\"utf-8859\"?><a/>", false},
        {"<?xml version=\"1.0\" encoding = \"UTF-7\"?><a/>", false},
        {"<?xml version=\"1.0\"" + SPACE + "encoding=\"UTF-7\"?><a/>", false},
    };
    ControlSearch search;
    for (const auto& [content, isWithout] : cases)
        for (const std::size_t step : {1U, 2U, 5U, 6U, 7U, 8U, 100U, 1000U}) {
            search.begin();
            for (std::size_t i = 0; i < content.size(); i += step)
                search.look(reinterpret_cast<const unsigned char*>(content.data()) + i,
                            std::min(step, content.size() - i));
            EXPECT_EQ(search.isWithout(), isWithout) << content << " by " << step;
        }
}

} // namespace
