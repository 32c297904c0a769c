#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/URI.hpp>

namespace {

using namespace opc::model;
using opc::test::throws;

std::string narrow(const std::u16string& text) {
    return opc::toUDEString(text);
}

TEST(URI, refusesWhatIsNoReference) {
    const char* const notASCII = "Could not successfully parse URI string. URI must contain only US-ASCII.";
    const char* const notParsed = "Could not successfully parse URI string.";
    const std::pair<std::u16string, const char*> cases[] = {
        {u"/é.xml", notASCII},
        {u"/\u0080", notASCII},
        {u"%é", notASCII}, // the rule on characters comes first
        {std::u16string(1, char16_t(0xD800)), notASCII},
        {u"%4", notParsed},
        {u":a", notParsed},
        {u"1:a", notParsed},
        {u"/a[1]", notParsed},
        {u"#a#", notParsed},
        {u"//h:x", notParsed},
        {std::u16string(u"/a\0b", 4), notParsed},
    };
    for (const auto& [text, message] : cases)
        EXPECT_TRUE(throws<InvalidURI>(message, [&text = text] { URI{text}; })) << narrow(text);
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
    struct Case {
        std::u16string left, right;
        int sign;
    };
    const Case cases[] = {
        {u"/A.xml", u"/a.xml", 0},
        {u"HTTP://H/a?Q#F", u"http://h/A?q#f", 0},
        {u"/a/../b", u"/b", -1},
        {u"/%41", u"/A", -1},
        {u"/%c3%a9", u"/%C3%A9", 0},
        {u"", u"/", -1},
        {u"/a", u"/B", -1},
        {u"/ab", u"/A", 1},
        {u"/sig10.xml", u"/SIG2", -1},
    };
    for (const Case& c : cases) {
        const URI left(c.left);
        const URI right(c.right);
        EXPECT_EQ(left == right, c.sign == 0);
        EXPECT_EQ(left != right, c.sign != 0);
        EXPECT_EQ(left < right, c.sign < 0);
        EXPECT_EQ(right<left, c.sign> 0);
        EXPECT_EQ(left == c.right, c.sign == 0);
        EXPECT_EQ(left != c.right, c.sign != 0);
        EXPECT_EQ(left < c.right, c.sign < 0);
        EXPECT_EQ(c.left == right, c.sign == 0);
        EXPECT_EQ(c.left != right, c.sign != 0);
        EXPECT_EQ(c.left < right, c.sign < 0);
        EXPECT_EQ(c.right<left, c.sign> 0);
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

    struct Case {
        std::u16string text;
        std::string extra;
        std::u16string encoded;
    };
    const Case components[] = {
        {u"a/b", "", u"a%2Fb"},
        {u"a/b", "/", u"a/b"},
        {u"é", "\xC3\xA9", u"%C3%A9"}, // extra holds no bytes beyond ASCII
        {u"AZaz09-._~", "", u"AZaz09-._~"},
        {u":%", "%", u"%3A%"},
        {u"", "/", u""},
    };
    for (const Case& c : components)
        EXPECT_EQ(narrow(URI::encodeComponent(c.text, c.extra)), narrow(c.encoded));
    EXPECT_EQ(URI::encodeComponent(std::u16string(1, u'\0'), ""), u"%00");
}

TEST(URI, relativize) {
    const char* const opaque = "URIs must be hierarchical URIs.";
    const char* const absolute =
        "URIs must be relative URIs, where the source and target URI have absolute paths.";
    const char* const same = "URI's paths must be different.";
    struct Case {
        const char16_t *source, *target;
        const char* message;
        const char16_t* result;
    };
    const Case cases[] = {
        {u"mailto:a", u"/b", opaque, nullptr},
        {u"http://h/a", u"mailto:a", opaque, nullptr},
        {u"http://h/a", u"/b", absolute, nullptr},
        {u"/a", u"http://h/a", absolute, nullptr},
        {u"a", u"/b", absolute, nullptr},
        {u"/a", u"b", absolute, nullptr},
        {u"", u"", absolute, nullptr},
        {u"/a.xml", u"/a.xml", same, nullptr},
        {u"/a.xml?x", u"/a.xml?y", same, nullptr},
        {u"/a.xml", u"/A.xml", nullptr, u"A.xml"},
        {u"/word/document.xml", u"/word/media/image.png", nullptr, u"media/image.png"},
        {u"/word/document.xml", u"/docProps/app.xml#x", nullptr, u"../docProps/app.xml#x"},
        {u"/", u"/word/document.xml", nullptr, u"word/document.xml"},
        {u"/a", u"/b c", nullptr, u"b%20c"},
        {u"/a", u"//h/b", nullptr, u"//h/b"},
    };
    for (const Case& c : cases) {
        const std::string which = narrow(std::u16string(c.source) + u" -> " + c.target);
        const URI source(c.source);
        const URI target(c.target);
        if (c.message != nullptr)
            EXPECT_TRUE(throws<UnsupportedRelativize>(c.message, [&] { relativize(source, target); }))
                << which;
        else
            EXPECT_EQ(narrow(relativize(source, target).toString()), narrow(c.result)) << which;
    }
}

TEST(URI, resolve) {
    struct Case {
        const char16_t *base, *reference, *result; // no result where the operation is refused
    };
    const Case cases[] = {
        {u"mailto:a", u"/b", nullptr},
        {u"/a", u"mailto:b", nullptr},
        {u"/word/document.xml", u"media/image.png", u"/word/media/image.png"},
        {u"/word/document.xml", u"../a b.xml?q#f", u"/a%20b.xml?q#f"},
        {u"/", u"word/document.xml", u"/word/document.xml"},
        {u"/a", u"http://h/x/../y", u"http://h/y"},
        {u"http://h/a", u"b", u"http://h/b"},
        {u"/a", u"", u"/a"},
        {u"/a", u".//b/c", u"/.//b/c"},
    };
    for (const Case& c : cases) {
        const URI base(c.base);
        const URI reference(c.reference);
        if (c.result == nullptr)
            EXPECT_TRUE(throws<UnsupportedResolve>("URIs must be hierarchical URIs.",
                                                   [&] { resolve(base, reference); }));
        else
            EXPECT_EQ(narrow(resolve(base, reference).toString()), narrow(c.result));
    }
}

} // namespace
