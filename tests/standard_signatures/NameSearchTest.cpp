#include "content/NameSearch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>

namespace {

using opc::standard_signatures::NameSearch;

constexpr std::array<std::string_view, 4> SEGMENTS = {"core.xml", "sig1.xml", "a.xm", "q"};

class RandomContent {
public:
    explicit RandomContent(unsigned seed) : random(seed) {}

    std::size_t upTo(std::size_t most) { return random() % (most + 1); }

    /// A text of pieces of the segments and of what stands in them and beside them.
    std::string text() {
        constexpr std::string_view CHARACTERS = "core.xmlsig1aCORE/ .xQ";
        std::string made;
        for (std::size_t left = upTo(39); left > 0; --left) {
            const std::string_view segment = SEGMENTS[upTo(3)];
            if (upTo(5) == 0)
                made += segment.substr(0, 1 + upTo(segment.size() - 1));
            else
                made += CHARACTERS[upTo(CHARACTERS.size() - 1)];
        }
        return made;
    }

    /// The text as contents of other formats can write it.
    std::string encoded(const std::string& text) {
        std::string made;
        for (const char c : text) {
            std::array<char, 12> number{};
            switch (upTo(7)) {
            case 0:
                std::snprintf(number.data(), number.size(), "%%%02X", static_cast<unsigned>(c));
                made += number.data();
                break;
            case 1:
                std::snprintf(number.data(), number.size(), "&#x%x;", static_cast<unsigned>(c));
                made += number.data();
                break;
            case 2: // UTF-16
                made.append(1, c).append(1, '\0');
                break;
            case 3:
                hasMarkup = true;
                made.append("<!--zz-->").append(1, c);
                break;
            default:
                made += c;
            }
        }
        return made;
    }

    bool hasMarkup = false; ///< behind which a segment may count as going on that doesn't

private:
    std::mt19937 random;
};

TEST(NameSearch, findsWhatIsInTheDecodedText) {
    RandomContent random(7);
    NameSearch search({"/x/core.xml", "/sig1.xml", "/y/a.xm", "/q"});
    int found = 0;
    for (int round = 0; round < 40000; ++round) {
        search = NameSearch({"/x/core.xml", "/sig1.xml", "/y/a.xm", "/q"});
        random.hasMarkup = false;
        std::string text = random.text();
        const std::string content = random.encoded(text);
        search.begin();
        for (std::size_t i = 0, count = 0; i < content.size(); i += count) {
            count = std::min(content.size() - i, 1 + random.upTo(round % 2 == 0 ? 6 : 60));
            search.look(reinterpret_cast<const unsigned char*>(content.data()) + i, count);
        }
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
        for (std::size_t i = 0; i < SEGMENTS.size(); ++i) {
            const bool isThere = text.find(SEGMENTS[i]) != std::string::npos;
            found += isThere ? 1 : 0;
            ASSERT_TRUE(!isThere || search.isFound(i)) << SEGMENTS[i] << " in " << content;
            ASSERT_TRUE(isThere || random.hasMarkup || !search.isFound(i))
                << SEGMENTS[i] << " in " << content;
        }
    }
    EXPECT_GT(found, 1000);
}

/// A content that is made for it takes long.
TEST(NameSearch, endsAtItsBound) {
    const std::string content = std::string(500, '&') + "core.xml" + std::string(500, ' ');
    for (const std::uint64_t most : {500U, 520U}) {
        NameSearch search({"/core.xml", "/sig1.xml"}, most);
        search.begin();
        search.look(reinterpret_cast<const unsigned char*>(content.data()), content.size());
        EXPECT_TRUE(search.isFound(0));
        EXPECT_EQ(search.isFound(1), most == 500) << most; // nobody knows
    }
}

} // namespace
