#include <bedrock/network/IRI.hpp>
#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

using bedrock::network::IRI;
using bedrock::network::IRIException;
using bedrock::network::iri::Encoding;

std::string narrow(const std::u16string& text) {
    return opc::toUDEString(text);
}

TEST(IRI, findsTheComponents) {
    struct Case {
        std::u16string text, scheme, specific, authority, path, query, fragment;
        std::string marks; // Opaque, Scheme, Authority, absolute Path, Query, Fragment
    };
    const Case cases[] = {
        {u"", u"", u"", u"", u"", u"", u"", ""},
        {u"/a/b.xml", u"", u"/a/b.xml", u"", u"/a/b.xml", u"", u"", "P"},
        {u"a/b:c", u"", u"a/b:c", u"", u"a/b:c", u"", u"", ""},
        {u"?x:y", u"", u"?x:y", u"", u"", u"x:y", u"", "Q"},
        {u"#f", u"", u"", u"", u"", u"", u"f", "F"},
        {u"a?#", u"", u"a?", u"", u"a", u"", u"", "QF"},
        {u"a#b?c/d", u"", u"a", u"", u"a", u"", u"b?c/d", "F"},
        {u"//h", u"", u"//h", u"h", u"", u"", u"", "A"},
        {u"///a", u"", u"///a", u"", u"/a", u"", u"", "AP"},
        {u"file:///a", u"file", u"///a", u"", u"/a", u"", u"", "SAP"},
        {u"file:/a", u"file", u"/a", u"", u"/a", u"", u"", "SP"},
        {u"http://h?q/r?s", u"http", u"//h?q/r?s", u"h", u"", u"q/r?s", u"", "SAQ"},
        {u"http://u:p@[::1]:80/%41?q=%20#f", u"http", u"//u:p@[::1]:80/%41?q=%20", u"u:p@[::1]:80", u"/%41",
         u"q=%20", u"f", "SAPQF"},
        {u"mailto:a@b?c#d", u"mailto", u"a@b?c", u"", u"a@b", u"c", u"d", "OSQF"},
        {u"urn:a/b", u"urn", u"a/b", u"", u"a/b", u"", u"", "OS"},
        {u"x:", u"x", u"", u"", u"", u"", u"", "OS"},
        {u"x:?q", u"x", u"?q", u"", u"", u"q", u"", "OSQ"},
        {u"C:\\a b", u"C", u"\\a b", u"", u"\\a b", u"", u"", "OS"},
    };
    for (const Case& c : cases) {
        const IRI iri(c.text);
        const auto as = Encoding::AsWritten;
        const std::array<std::u16string, 6> got{iri.getScheme(),      iri.getSchemeSpecificPart(as),
                                                iri.getAuthority(as), iri.getPath(as),
                                                iri.getQuery(as),     iri.getFragment(as)};
        const std::array<std::u16string, 6> expected{c.scheme, c.specific, c.authority,
                                                     c.path,   c.query,    c.fragment};
        EXPECT_EQ(got, expected) << narrow(c.text);
        std::string marks;
        const std::pair<char, bool> observed[] = {
            {'O', iri.isOpaque()},        {'S', iri.hasScheme()}, {'A', iri.hasAuthority()},
            {'P', iri.hasAbsolutePath()}, {'Q', iri.hasQuery()},  {'F', iri.hasFragment()},
        };
        for (const auto& [mark, set] : observed)
            if (set)
                marks += mark;
        EXPECT_EQ(marks, c.marks) << narrow(c.text);
        EXPECT_EQ(iri.toString(), c.text);
    }
}

TEST(IRI, checksTheStructure) {
    const std::u16string good[] = {
        // structure
        u"a+b-c.1:x", u"./a:b", u"a%2fB", u"http://h:/x", u"http://h:0123", u"//@", u"//a@b", u"//u:p:q@h",
        u"//[::]", u"//[1::]", u"//[1:2:3:4:5:6:7:8]", u"//[1:2:3:4:5:6:7::]", u"//[::ffff:255.1.20.0]",
        u"//[1:2:3:4:5:6:1.2.3.4]:9", u"//[v1F.a:b]", u"file://C:/x",
        // characters
        u"a b\"<>{}|\\^`", u"é\U0001F600", u"tab\tline\r\n", u"//h\\é b/x", u"?a?b#c?d", u"\x7F\x80"};
    for (const auto& text : good)
        EXPECT_NO_THROW(IRI{text}) << narrow(text);

    const std::u16string lead(1, char16_t(0xD83D));
    const std::u16string trail(1, char16_t(0xDE00));
    const std::u16string bad[] = {
        // scheme
        u":a", u"1a:b", u"a_b:c", u"é:c", u"a b:c", u"a%20:b", u"+:x",
        // escapes
        u"%", u"a%4", u"%4G", u"%G4", u"/a%/b", u"?%zz", u"#%2", u"//h%2", u"%%41",
        // brackets and fragments
        u"/a[1]", u"a]", u"?[", u"#]", u"#a#b", u"a#b?c#d",
        // authority
        u"//a:b:1", u"//h:8a", u"//a@b@c", u"//[::1", u"//::1]", u"//[::1]x", u"//[::1]:x", u"//[]", u"//[@h",
        u"//[a]@h", u"//h[::1]", u"//[1:2]", u"//[1:::2]", u"//[::1::2]", u"//[:1::]", u"//[1::2:]",
        u"//[12345::]", u"//[1:2:3:4:5:6:7:8:9]", u"//[1:2:3:4:5:6:7:8::]", u"//[::1.2.3]",
        u"//[::1.2.3.256]", u"//[::01.2.3.4]", u"//[1.2.3.4::]", u"//[::1.2.3.4.5]", u"//[::1..2.3]",
        u"//[v.a]", u"//[v1.]", u"//[v1a]", u"//[vg.a]", u"//[v1.é]", u"//[v1.a b]", u"//[::é]",
        // characters
        std::u16string(1, u'\0'), u"a\u0001", u"\x1F", u"//\x08", lead, lead + u"a", trail,
        u"a" + trail + lead, u"a\uFFFE", u"\uFFFF"};
    for (const auto& text : bad)
        EXPECT_THROW(IRI{text}, IRIException) << narrow(text);
}

/// The 42 examples of RFC 3986 section 5.4.
TEST(IRI, resolvesTheExamplesOfTheStandard) {
    const std::pair<std::u16string, std::vector<std::u16string>> cases[] = {
        {u"g:h", {u"g:h"}},
        {u"http://a/b/c/g", {u"g", u"./g"}},
        {u"http://a/b/c/g/", {u"g/", u"./g/."}},
        {u"http://a/g", {u"/g", u"../../g", u"../../../g", u"../../../../g", u"/./g", u"/../g"}},
        {u"http://g", {u"//g"}},
        {u"http://a/b/c/d;p?y", {u"?y"}},
        {u"http://a/b/c/g?y", {u"g?y"}},
        {u"http://a/b/c/d;p?q#s", {u"#s"}},
        {u"http://a/b/c/g#s", {u"g#s"}},
        {u"http://a/b/c/g?y#s", {u"g?y#s"}},
        {u"http://a/b/c/;x", {u";x"}},
        {u"http://a/b/c/g;x", {u"g;x"}},
        {u"http://a/b/c/g;x?y#s", {u"g;x?y#s"}},
        {u"http://a/b/c/d;p?q", {u""}},
        {u"http://a/b/c/", {u".", u"./"}},
        {u"http://a/b/", {u"..", u"../"}},
        {u"http://a/b/g", {u"../g", u"./../g"}},
        {u"http://a/", {u"../..", u"../../"}},
        {u"http://a/b/c/g.", {u"g."}},
        {u"http://a/b/c/.g", {u".g"}},
        {u"http://a/b/c/g..", {u"g.."}},
        {u"http://a/b/c/..g", {u"..g"}},
        {u"http://a/b/c/g/h", {u"g/./h"}},
        {u"http://a/b/c/h", {u"g/../h"}},
        {u"http://a/b/c/g;x=1/y", {u"g;x=1/./y"}},
        {u"http://a/b/c/y", {u"g;x=1/../y"}},
        {u"http://a/b/c/g?y/./x", {u"g?y/./x"}},
        {u"http://a/b/c/g?y/../x", {u"g?y/../x"}},
        {u"http://a/b/c/g#s/./x", {u"g#s/./x"}},
        {u"http://a/b/c/g#s/../x", {u"g#s/../x"}},
        {u"http:g", {u"http:g"}},
    };
    const IRI base(u"http://a/b/c/d;p?q");
    for (const auto& [expected, references] : cases) {
        for (const std::u16string& reference : references)
            EXPECT_EQ(IRI(reference).resolveAgainst(base).toString(), expected) << narrow(reference);
    }
}

TEST(IRI, resolvesAgainstBasesOfEveryForm) {
    struct Case {
        std::u16string base, reference, expected;
    };
    const Case cases[] = {
        {u"/a/b.xml", u"../c.xml", u"/c.xml"},
        {u"/a/b.xml", u"c.xml#x", u"/a/c.xml#x"},
        {u"/", u"a/../..//b", u"/.//b"}, // not the authority "b"
        {u"/a", u".//b", u"/.//b"},
        {u"http://h", u"a", u"http://h/a"},
        {u"http://h?q", u"", u"http://h?q"},
        {u"http://h", u".//b", u"http://h//b"},
        {u"x:/a", u".//b", u"x:/.//b"},
        {u"a", u"./b:c", u"./b:c"}, // not the scheme "b"
        {u"a/b", u"./b:c", u"a/b:c"},
        {u"urn:a:b", u"#f", u"urn:a:b#f"},
        {u"urn:a:b", u"c", u"urn:c"},
        {u"/a//b/", u"../c", u"/a//c"},
        {u"/a/../b", u"", u"/a/../b"},
        {u"/a#f", u"", u"/a"},
        {u"", u"", u""},
        {u"/é/x", u"ü b", u"/é/ü b"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(narrow(IRI(c.reference).resolveAgainst(IRI(c.base)).toString()), narrow(c.expected))
            << narrow(c.base + u" + " + c.reference);
}

TEST(IRI, makesTheShortestRelativePath) {
    struct Case {
        std::u16string base, target, expected;
    };
    const Case cases[] = {
        {u"/a/b.xml", u"/a/c.xml", u"c.xml"},
        {u"/a/b.xml", u"/c/d.xml", u"../c/d.xml"},
        {u"/a/b/c/d", u"/a/x", u"../../x"},
        {u"/a.xml", u"/b/c.xml", u"b/c.xml"},
        {u"/", u"/a.xml", u"a.xml"},
        {u"/a/b", u"/a/", u"."},
        {u"/a/b/c", u"/a/", u".."},
        {u"/a/b/c", u"/", u"../.."},
        {u"/ab/c", u"/a/c", u"../a/c"},
        {u"/a/b", u"/a/c:d", u"./c:d"},
        {u"/a/b", u"/c:d", u"../c:d"},
        {u"/a/b", u"/a/c/d:e", u"c/d:e"},
        {u"/a/b", u"/a//c", u".//c"},
        {u"/a//b", u"/a/c", u"../c"},
        {u"/a/b/c", u"/a//d", u"..//d"},
        {u"/a/b?q", u"/a/b#f", u"b#f"},
        {u"/a/b?q", u"/a/b?q#f", u"#f"},
        {u"/a/b?q#g", u"/a/b?q", u""},
        {u"/a/b?q", u"/a/b?r#f", u"?r#f"},
        {u"/a/?q", u"/a/", u"."},
        {u"/a/b", u"/a/c?x/../y#z", u"c?x/../y#z"},
        {u"/x/../a/b", u"/a/c", u"c"},
        {u"/a/b", u"/a/./x/../c", u"c"}, // leads where the target leads
        {u"http://h", u"http://h/a", u"a"},
        {u"http://h/a", u"http://h", u"http://h"},
        {u"http://h/a", u"http://i/a", u"http://i/a"},
        {u"http://h/a", u"https://h/a", u"https://h/a"},
        {u"/a", u"//h/a", u"//h/a"},
        {u"/a", u"mailto:x", u"mailto:x"},
        {u"mailto:x", u"mailto:x#f", u"#f"},
        {u"/a", u"b", u"b"},
        {u"b", u"/a", u"/a"},
        {u"a/b", u"c", u"c"},
        {u"/a", u".//b", u".//b"}, // leads to "/.//b", not to "/b"
        {u"/a", u"..//b", u"..//b"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(narrow(IRI(c.target).makeRelativeTo(IRI(c.base)).toString()), narrow(c.expected))
            << narrow(c.base + u" -> " + c.target);
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
        // With dot segments, or relative itself, a target leads elsewhere than its text says.
        const std::u16string meant = target.resolveAgainst(base).toString();
        ASSERT_TRUE(reached == target.toString() || (meant != target.toString() && reached == meant))
            << narrow(base.toString() + u" -> " + target.toString() + u" : " + made.toString());
        relative += made.toString() != target.toString() ? 1 : 0;
    }
    EXPECT_GT(relative, 6000);
}

TEST(IRI, toAsciiStringEscapesWhatAURIForbids) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"/a%20b", u"/a%20b"},
        {u"/é", u"/%C3%A9"},
        {u"/\U0001F600", u"/%F0%9F%98%80"},
        {u"a b\"<>\\^`{|}\x7F\t", u"a%20b%22%3C%3E%5C%5E%60%7B%7C%7D%7F%09"},
        {u"//[::1]/:?#!$&'()*+,;=@-._~", u"//[::1]/:?#!$&'()*+,;=@-._~"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(narrow(IRI(text).toAsciiString(false)), narrow(expected));
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
