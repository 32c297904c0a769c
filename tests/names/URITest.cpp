#include "support/Cases.hpp"
#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/URI.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::toUDEString;

TEST(URI, refusesWhatIsNoReference) {
    forEachCase("uris/refused.txt", [](const std::string& message, const std::u16string& text) {
        EXPECT_RAISES(InvalidURI, message, URI{text});
    });
    EXPECT_THROW(URI{std::u16string(1, char16_t(0xD800))}, InvalidURI);
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
    const auto check = [](const std::u16string& leftText, const std::string& sign,
                          const std::u16string& rightText) {
        const URI left(leftText);
        const URI right(rightText);
        const bool isEqual = sign == "=", isLess = sign == "<", isGreater = sign == ">";
        EXPECT_TRUE((left == right) == isEqual && (left != right) == !isEqual);
        EXPECT_TRUE((left < right) == isLess && (right < left) == isGreater);
        EXPECT_TRUE((left == rightText) == isEqual && (left != rightText) == !isEqual);
        EXPECT_TRUE((leftText == right) == isEqual && (leftText != right) == !isEqual);
        EXPECT_TRUE((left < rightText) == isLess && (leftText < right) == isLess);
        EXPECT_EQ(rightText < left, isGreater);
    };
    forEachCase("uris/compared.txt", check);
    // The string need not be a URI.
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
    forEachCase("uris/encoded.txt", [](const std::u16string& text, const std::string& encoded) {
        EXPECT_EQ(toUDEString(URI::encodeIRI(text)), encoded);
    });
    EXPECT_EQ(URI::encodeComponent(u"a/b", ""), u"a%2Fb");
    EXPECT_EQ(URI::encodeComponent(u"a/b", "/"), u"a/b");
    EXPECT_EQ(URI::encodeComponent(u"é", "\xC3\xA9"), u"%C3%A9") << "extra holds no bytes beyond ASCII";
    EXPECT_EQ(URI::encodeComponent(u"AZaz09-._~", ""), u"AZaz09-._~");
    EXPECT_EQ(URI::encodeComponent(u":%", "%"), u"%3A%");
    EXPECT_EQ(URI::encodeComponent(u"", "/"), u"");
    EXPECT_EQ(URI::encodeComponent(std::u16string(1, u'\0'), ""), u"%00");
}

TEST(URI, relativize) {
    const auto way = [](const std::u16string& source, const std::u16string& target) {
        return toUDEString(relativize(URI(source), URI(target)).toString());
    };
    forEachCase("uris/not-relativized.txt",
                [&](const std::string& message, const std::u16string& source, const std::u16string& target) {
                    EXPECT_RAISES(UnsupportedRelativize, message, way(source, target));
                });
    forEachCase("uris/relativized.txt",
                [&](const std::u16string& source, const std::u16string& target, const std::string& result) {
                    EXPECT_EQ(way(source, target), result);
                });
}

TEST(URI, resolve) {
    forEachCase("uris/resolved.txt",
                [](const std::u16string& base, const std::u16string& reference, const std::string& result) {
                    EXPECT_EQ(toUDEString(resolve(URI(base), URI(reference)).toString()), result);
                });
    const URI opaque(u"mailto:a"), rooted(u"/b");
    const char* const message = "URIs must be hierarchical URIs.";
    EXPECT_RAISES(UnsupportedResolve, message, resolve(opaque, rooted));
    EXPECT_RAISES(UnsupportedResolve, message, resolve(rooted, opaque));
}

} // namespace
