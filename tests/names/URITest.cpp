#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/URI.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr auto narrow = &opc::toUDEString;

TEST(URI, refusesWhatIsNoReference) {
    const char* const notASCII = "Could not successfully parse URI string. URI must contain only US-ASCII.";
    const char* const notParsed = "Could not successfully parse URI string.";
    const std::pair<const char*, std::vector<std::u16string>> cases[] = {
        {notASCII, {u"/é.xml", u"/\u0080", u"%é", {char16_t(0xD800)}}}, // the rule on characters comes first
        {notParsed, {u"%4", u":a", u"1:a", u"/a[1]", u"#a#", u"//h:x", std::u16string(u"/a\0b", 4)}}};
    for (const auto& [message, texts] : cases)
        for (const std::u16string& text : texts)
            EXPECT_RAISES(InvalidURI, message, URI{text}) << narrow(text);
}

TEST(URI, emptyTextsAreURIs) {
    const char16_t* const none = nullptr;
    for (const URI& uri : {URI(), URI(none), URI(u""), URI(std::u16string())}) {
        EXPECT_EQ(uri.toString(), u"");
        EXPECT_FALSE(uri.isAbsolute() || uri.isOpaque() || uri.hasAbsolutePath());
    }
}

TEST(URI, keepsTheTextAsWritten) {
    for (const char16_t* text : {u"/%C3%A9.xml", u"/a/../B%7e", u"/a b|\"c\"", u"HTTP://H"})
        EXPECT_EQ(URI(text).toString(), text);
    EXPECT_EQ(URI(u"/%C3%A9.xml?q").getPath(), u"/%C3%A9.xml");
}

TEST(URI, opaqueOnesHaveSchemeAndFragmentAlone) {
    const URI opaque(u"mailto:a@b?c#d");
    EXPECT_TRUE(opaque.isOpaque() && opaque.isAbsolute() && opaque.hasScheme() && opaque.hasFragment());
    EXPECT_FALSE(opaque.hasAuthority() || opaque.hasQuery() || opaque.hasAbsolutePath());
    EXPECT_EQ(opaque.getPath() + opaque.getQuery() + opaque.getAuthority(), u"");
    EXPECT_EQ(opaque.getScheme(), u"mailto");
    EXPECT_EQ(opaque.getSchemeSpecificPart(), u"a@b?c");
    EXPECT_EQ(opaque.getFragment(), u"d");

    const URI hierarchical(u"http://u@h:1/p%20?q#f");
    EXPECT_TRUE(hierarchical.hasAuthority() && hierarchical.hasQuery() && hierarchical.hasAbsolutePath());
    EXPECT_EQ(hierarchical.getAuthority(), u"u@h:1");
    EXPECT_EQ(hierarchical.getPath(), u"/p%20");
    EXPECT_EQ(hierarchical.getQuery(), u"q");
    EXPECT_EQ(hierarchical.getSchemeSpecificPart(), u"//u@h:1/p%20?q");
}

TEST(URI, comparesTheWholeTextWithoutCase) {
    const std::u16string cases[] = {// equal
                                    u"/A.xml | = | /a.xml", u"HTTP://H/a?Q#F | = | http://h/A?q#f",
                                    u"/%c3%a9 | = | /%C3%A9",
                                    // unequal
                                    u"/a/../b | < | /b", u"/%41 | < | /A", u" | < | /", u"/a | < | /B",
                                    u"/ab | > | /A", u"/sig10.xml | < | /SIG2"};
    for (const std::u16string& row : cases) {
        const auto [leftText, sign, rightText] = columns<3>(row);
        const URI left(leftText);
        const URI right(rightText);
        const bool isEqual = sign == u"=", isLess = sign == u"<", isGreater = sign == u">";
        EXPECT_TRUE((left == right) == isEqual && (left != right) == !isEqual) << narrow(row);
        EXPECT_TRUE((left < right) == isLess && (right < left) == isGreater) << narrow(row);
        EXPECT_TRUE((left == rightText) == isEqual && (left != rightText) == !isEqual) << narrow(row);
        EXPECT_TRUE((leftText == right) == isEqual && (leftText != right) == !isEqual) << narrow(row);
        EXPECT_TRUE((left < rightText) == isLess && (leftText < right) == isLess) << narrow(row);
        EXPECT_EQ(rightText < left, isGreater) << narrow(row);
    }
    // The string may be something that is no URI.
    EXPECT_TRUE(URI(u"/a") != u"/é%" && u"[" < URI(u"a"));
}

TEST(URI, assignmentLeavesOtherCopiesAlone) {
    URI first(u"/a");
    const URI second(first);
    first = URI(u"/b");
    EXPECT_EQ(first.toString(), u"/b");
    EXPECT_EQ(second.toString(), u"/a");
}

TEST(URI, percentEncoding) {
    const std::u16string all = u":/?#[]@!$&'()*+,;=AZaz09-._~";
    const std::pair<std::u16string, std::u16string> iris[] = {
        {u"/a b", u"/a%20b"},   {u"100%", u"100%25"}, {u"%20", u"%2520"},
        {u"é", u"%C3%A9"},      {u"", u""},           {u"\U0001F600", u"%F0%9F%98%80"},
        {u"\n\x7F", u"%0A%7F"}, {all, all},           {u"\"<>\\^`{|}", u"%22%3C%3E%5C%5E%60%7B%7C%7D"},
    };
    for (const auto& [text, encoded] : iris)
        EXPECT_EQ(narrow(URI::encodeIRI(text)), narrow(encoded));

    EXPECT_EQ(URI::encodeComponent(u"a/b", ""), u"a%2Fb");
    EXPECT_EQ(URI::encodeComponent(u"a/b", "/"), u"a/b");
    EXPECT_EQ(URI::encodeComponent(u"é", "\xC3\xA9"), u"%C3%A9") << "extra holds no bytes beyond ASCII";
    EXPECT_EQ(URI::encodeComponent(u"AZaz09-._~", ""), u"AZaz09-._~");
    EXPECT_EQ(URI::encodeComponent(u":%", "%"), u"%3A%");
    EXPECT_EQ(URI::encodeComponent(u"", "/"), u"");
    EXPECT_EQ(URI::encodeComponent(std::u16string(1, u'\0'), ""), u"%00");
}

TEST(URI, relativize) {
    const char* const opaque = "URIs must be hierarchical URIs.";
    const char* const absolute =
        "URIs must be relative URIs, where the source and target URI have absolute paths.";
    const char* const same = "URI's paths must be different.";
    const std::pair<const char*, std::vector<std::u16string>> refused[] = {
        {opaque, {u"mailto:a | /b", u"http://h/a | mailto:a"}},
        {absolute, {u"http://h/a | /b", u"/a | http://h/a", u"a | /b", u"/a | b", u" | "}},
        {same, {u"/a.xml | /a.xml", u"/a.xml?x | /a.xml?y"}}};
    for (const auto& [message, rows] : refused) {
        for (const std::u16string& row : rows) {
            const auto [source, target] = columns<2>(row);
            const URI from(source), to(target);
            EXPECT_RAISES(UnsupportedRelativize, message, relativize(from, to)) << narrow(row);
        }
    }
    for (const std::u16string row :
         {u"/a.xml | /A.xml | A.xml", u"/ | /word/document.xml | word/document.xml",
          u"/word/document.xml | /word/media/image.png | media/image.png",
          u"/word/document.xml | /docProps/app.xml#x | ../docProps/app.xml#x", u"/a | /b c | b%20c",
          u"/a | //h/b | //h/b"}) {
        const auto [source, target, result] = columns<3>(row);
        EXPECT_EQ(narrow(relativize(URI(source), URI(target)).toString()), narrow(result)) << narrow(row);
    }
}

TEST(URI, resolve) {
    for (const std::u16string row :
         {u"/word/document.xml | media/image.png | /word/media/image.png",
          u"/word/document.xml | ../a b.xml?q#f | /a%20b.xml?q#f",
          u"/ | word/document.xml | /word/document.xml", u"/a | http://h/x/../y | http://h/y",
          u"http://h/a | b | http://h/b", u"/a |  | /a", u"/a | .//b/c | /.//b/c"}) {
        const auto [base, reference, result] = columns<3>(row);
        EXPECT_EQ(narrow(resolve(URI(base), URI(reference)).toString()), narrow(result));
    }
    const URI opaque(u"mailto:a"), rooted(u"/b");
    const char* const message = "URIs must be hierarchical URIs.";
    EXPECT_RAISES(UnsupportedResolve, message, resolve(opaque, rooted));
    EXPECT_RAISES(UnsupportedResolve, message, resolve(rooted, opaque));
}

} // namespace
