#include "support/Cases.hpp"

namespace {

using namespace std::string_literals;
using opc::test::forEachCase;

TEST(Text, caselessCompareFoldsASCIILettersAlone) {
    const auto check = [](const std::u16string& left, const std::string& sign, const std::u16string& right) {
        const auto result = opc::caselessCompare(left, right);
        EXPECT_EQ(result > 0 ? ">" : result < 0 ? "<" : "=", sign);
        const auto reverse = opc::caselessCompare(right, left);
        EXPECT_EQ(reverse < 0 ? ">" : reverse > 0 ? "<" : "=", sign);
    };
    forEachCase("texts/compared.txt", check);
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
    forEachCase("texts/malformed-utf8.txt", [](const std::string& bytes, const std::u16string& text) {
        EXPECT_EQ(opc::toString(bytes, true), text);
    });

    const std::u16string lone = {u'a', char16_t(0xD800), u'b', char16_t(0xDC00)};
    EXPECT_EQ(opc::detail::toUTF8String(lone, true), "a\xEF\xBF\xBD"
                                                     "b\xEF\xBF\xBD");
    EXPECT_EQ(opc::detail::toUTF8String(lone, false), "ab");
}

TEST(Text, getExtensionLooksAtTheLastSegment) {
    forEachCase("texts/extensions.txt", [](const std::u16string& path, const std::u16string& extension) {
        EXPECT_EQ(opc::detail::getExtension(path), extension);
    });
}

} // namespace
