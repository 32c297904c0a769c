#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

TEST(Text, caselessCompareFoldsASCIILettersAlone) {
    const std::tuple<std::u16string, std::u16string, int> cases[] = {
        {u"", u"", 0},        {u"", u"a", -1},  {u"/A.xml", u"/a.XML", 0}, {u"rId10", u"rId2", -1},
        {u"a", u"B", -1},     {u"_", u"a", -1}, {u"_", u"A", -1},          {u"[", u"A", -1},
        {u"é", u"É", 1},      {u"ab", u"a", 1}, {u"A", u"ab", -1},         {u"Z", u"{", -1},
        {u"\uFFFF", u"a", 1},
    };
    for (const auto& [left, right, sign] : cases) {
        const auto result = opc::caselessCompare(left, right);
        EXPECT_EQ((result > 0) - (result < 0), sign) << opc::toUDEString(left + u" ~ " + right);
        const auto reverse = opc::caselessCompare(right, left);
        EXPECT_EQ((reverse > 0) - (reverse < 0), -sign) << opc::toUDEString(right + u" ~ " + left);
    }
}

TEST(Text, conversionsKeepEveryCharacter) {
    const std::u16string text = u"aé€\U0001F600";
    EXPECT_EQ(opc::detail::toUTF8String(text, true), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(opc::toString("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"s, true), text);
    EXPECT_EQ(opc::toWideString(text), L"aé€\U0001F600");
    EXPECT_EQ(opc::toString(L"aé€\U0001F600"s), text);
    EXPECT_EQ(opc::toString("\xE9"s, false), u"é");
    EXPECT_EQ(opc::toASCIIString(text), "a???");
    EXPECT_EQ(opc::toLowerASCIIString(u"AZÉ["), u"azÉ[");
}

TEST(Text, malformedSequencesBecomeReplacementCharacters) {
    const std::pair<std::string, std::u16string> utf8[] = {
        {"\xC3", u"\uFFFD"},                               // cut short
        {"\xC0\x80", u"\uFFFD\uFFFD"},                     // overlong
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // above U+10FFFF
        {"\x80 a", u"\uFFFD a"},
        {"\xE2\x82 a", u"\uFFFD\uFFFD a"},
        {"\xFF", u"\uFFFD"},
    };
    for (const auto& [bytes, text] : utf8)
        EXPECT_EQ(opc::toString(bytes, true), text);

    const std::u16string lone = {u'a', char16_t(0xD800), u'b', char16_t(0xDC00)};
    EXPECT_EQ(opc::detail::toUTF8String(lone, true), "a\xEF\xBF\xBD"
                                                     "b\xEF\xBF\xBD");
    EXPECT_EQ(opc::detail::toUTF8String(lone, false), "ab");
}

TEST(Text, getExtensionLooksAtTheLastSegment) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"/a.xml", u"xml"}, {u"/a.b/c", u""}, {u"/a.b/c.D", u"D"}, {u"/.rels", u"rels"},
        {u"/a.", u""},       {u"/a", u""},     {u"", u""},          {u"a.tar.gz", u"gz"},
    };
    for (const auto& [path, extension] : cases)
        EXPECT_EQ(opc::detail::getExtension(path), extension) << opc::toUDEString(path);
}

} // namespace
