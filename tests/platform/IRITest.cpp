#include "support/Cases.hpp"

#include <bedrock/network/IRI.hpp>

#include <array>
#include <random>
#include <string>

namespace {

using bedrock::network::IRI;
using bedrock::network::IRIException;
using bedrock::network::iri::Encoding;
using opc::test::forEachCase;

constexpr auto narrow = &opc::toUDEString;

TEST(IRI, findsTheComponents) {
    using Text = std::u16string;
    forEachCase("iris/components.txt",
                [](const Text& text, const Text& scheme, const Text& specific, const Text& authority,
                   const Text& path, const Text& query, const Text& fragment, const std::string& marks) {
                    const IRI iri(text);
                    const auto as = Encoding::AsWritten;
                    const std::array<Text, 6> got{iri.getScheme(),      iri.getSchemeSpecificPart(as),
                                                  iri.getAuthority(as), iri.getPath(as),
                                                  iri.getQuery(as),     iri.getFragment(as)};
                    const std::array<Text, 6> expected{scheme, specific, authority, path, query, fragment};
                    EXPECT_EQ(got, expected);
                    std::string found;
                    const std::pair<char, bool> observed[] = {
                        {'O', iri.isOpaque()},        {'S', iri.hasScheme()}, {'A', iri.hasAuthority()},
                        {'P', iri.hasAbsolutePath()}, {'Q', iri.hasQuery()},  {'F', iri.hasFragment()},
                    };
                    for (const auto& [mark, set] : observed)
                        if (set)
                            found += mark;
                    EXPECT_EQ(found, marks);
                    EXPECT_EQ(iri.toString(), text);
                });
}

TEST(IRI, checksTheStructure) {
    forEachCase("iris/accepted.txt", [](const std::u16string& text) { EXPECT_NO_THROW(IRI{text}); });
    forEachCase("iris/refused.txt",
                [](const std::u16string& text) { EXPECT_THROW(IRI{text}, IRIException); });
    for (const char16_t* text : {u"\xD83D", u"\xD83Dz", u"\xDE00", u"a\xDE00\xD83D"})
        EXPECT_THROW(IRI{text}, IRIException);
}

TEST(IRI, resolvesTheExamplesOfTheStandard) {
    const IRI base(u"http://a/b/c/d;p?q");
    forEachCase("iris/rfc3986-examples.txt",
                [&](const std::u16string& reference, const std::string& expected) {
                    EXPECT_EQ(narrow(IRI(reference).resolveAgainst(base).toString()), expected);
                });
}

TEST(IRI, resolvesAgainstBasesOfEveryForm) {
    forEachCase("iris/resolved.txt",
                [](const std::u16string& base, const std::u16string& reference, const std::string& expected) {
                    EXPECT_EQ(narrow(IRI(reference).resolveAgainst(IRI(base)).toString()), expected);
                });
}

TEST(IRI, makesTheShortestRelativePath) {
    forEachCase("iris/relative.txt",
                [](const std::u16string& base, const std::u16string& target, const std::string& expected) {
                    EXPECT_EQ(narrow(IRI(target).makeRelativeTo(IRI(base)).toString()), expected);
                });
}

TEST(IRI, relativePathsLeadBackToTheirTarget) {
    std::mt19937 random(20240229);
    const auto pick = [&random](const auto& choices) -> std::u16string {
        return choices[random() % std::size(choices)];
    };
    const char16_t* const origins[] = {u"", u"", u"", u"http://h", u"http://h", u"//h", u"x:", u"http://i:1"};
    const char16_t* const segments[] = {u"a", u"b", u"", u"c:1", u"é", u"a"};
    const char16_t* const dotted[] = {u"a", u"b", u"", u"..", u".", u"c:1"};
    const char16_t* const tails[] = {u"", u"", u"?q", u"?r/../s", u"#f", u"?q#f"};
    const auto generate = [&](const auto& from) {
        std::u16string text = pick(origins);
        for (std::size_t left = random() % 6; left > 0; --left)
            text += u"/" + pick(from);
        return text + pick(tails);
    };

    int relative = 0;
    for (int round = 0; round < 40000; ++round) {
        const IRI base(generate(round % 2 == 0 ? segments : dotted));
        const IRI target(generate(round % 4 < 2 ? segments : dotted));
        const IRI made = target.makeRelativeTo(base);
        const std::u16string reached = made.resolveAgainst(base).toString();
        // With dot segments, or if it is relative itself, a target leads elsewhere than its text says.
        const std::u16string meant = target.resolveAgainst(base).toString();
        ASSERT_TRUE(reached == target.toString() || (meant != target.toString() && reached == meant))
            << narrow(base.toString() + u" -> " + target.toString() + u" : " + made.toString());
        relative += made.toString() != target.toString() ? 1 : 0;
    }
    EXPECT_GT(relative, 6000);
}

TEST(IRI, toAsciiStringEscapesWhatAURIForbids) {
    forEachCase("iris/escaped.txt", [](const std::u16string& text, const std::string& expected) {
        EXPECT_EQ(narrow(IRI(text).toAsciiString(false)), expected);
    });
}

TEST(IRI, longTextsTakeLinearTime) {
    std::u16string deep(u"/");
    std::u16string up;
    for (int i = 0; i < 100000; ++i) {
        deep += u"a/";
        up += u"../";
    }
    EXPECT_EQ(IRI(up + u"b").resolveAgainst(IRI(deep)).toString(), u"/b");
    EXPECT_EQ(IRI(u"/b").makeRelativeTo(IRI(deep)).toString(), up + u"b");
}

} // namespace
