#include "support/Texts.hpp"

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
using opc::test::columns;

constexpr auto narrow = &opc::toUDEString;

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
    const std::u16string cases[] = {
        // normal
        u"g:h | g:h", u"g | http://a/b/c/g", u"./g | http://a/b/c/g", u"g/ | http://a/b/c/g/",
        u"/g | http://a/g", u"../../g | http://a/g", u"//g | http://g", u"?y | http://a/b/c/d;p?y",
        u"g?y | http://a/b/c/g?y", u"#s | http://a/b/c/d;p?q#s", u"g#s | http://a/b/c/g#s",
        u"g?y#s | http://a/b/c/g?y#s", u";x | http://a/b/c/;x", u"g;x | http://a/b/c/g;x",
        u"g;x?y#s | http://a/b/c/g;x?y#s", u" | http://a/b/c/d;p?q", u". | http://a/b/c/",
        u"./ | http://a/b/c/", u".. | http://a/b/", u"../ | http://a/b/", u"../g | http://a/b/g",
        u"../.. | http://a/", u"../../ | http://a/",
        // abnormal
        u"./g/. | http://a/b/c/g/", u"../../../g | http://a/g", u"../../../../g | http://a/g",
        u"/./g | http://a/g", u"/../g | http://a/g", u"./../g | http://a/b/g", u"g. | http://a/b/c/g.",
        u".g | http://a/b/c/.g", u"g.. | http://a/b/c/g..", u"..g | http://a/b/c/..g",
        u"g/./h | http://a/b/c/g/h", u"g/../h | http://a/b/c/h", u"g;x=1/./y | http://a/b/c/g;x=1/y",
        u"g;x=1/../y | http://a/b/c/y", u"g?y/./x | http://a/b/c/g?y/./x",
        u"g?y/../x | http://a/b/c/g?y/../x", u"g#s/./x | http://a/b/c/g#s/./x",
        u"g#s/../x | http://a/b/c/g#s/../x", u"http:g | http:g"};
    const IRI base(u"http://a/b/c/d;p?q");
    for (const std::u16string& row : cases) {
        const auto [reference, expected] = columns<2>(row);
        EXPECT_EQ(IRI(reference).resolveAgainst(base).toString(), expected) << narrow(row);
    }
}

TEST(IRI, resolvesAgainstBasesOfEveryForm) {
    const std::u16string cases[] = {
        // paths alone
        u"/a/b.xml | ../c.xml | /c.xml", u"/a/b.xml | c.xml#x | /a/c.xml#x", u"/a | .//b | /.//b",
        u"/ | a/../..//b | /.//b", // not the authority "b"
        // with an origin
        u"http://h | a | http://h/a", u"http://h?q |  | http://h?q", u"http://h | .//b | http://h//b",
        u"x:/a | .//b | x:/.//b",
        u"a | ./b:c | ./b:c", // not the scheme "b"
        u"a/b | ./b:c | a/b:c", u"urn:a:b | #f | urn:a:b#f", u"urn:a:b | c | urn:c", u"/a//b/ | ../c | /a//c",
        u"/a/../b |  | /a/../b", u"/a#f |  | /a", u" |  | ", u"/é/x | ü b | /é/ü b"};
    for (const std::u16string& row : cases) {
        const auto [base, reference, expected] = columns<3>(row);
        EXPECT_EQ(narrow(IRI(reference).resolveAgainst(IRI(base)).toString()), narrow(expected))
            << narrow(row);
    }
}

TEST(IRI, makesTheShortestRelativePath) {
    const std::u16string cases[] = {
        // paths alone
        u"/a/b.xml | /a/c.xml | c.xml", u"/a/b.xml | /c/d.xml | ../c/d.xml", u"/a/b/c/d | /a/x | ../../x",
        u"/a.xml | /b/c.xml | b/c.xml", u"/ | /a.xml | a.xml", u"/a/b | /a/ | .", u"/a/b/c | /a/ | ..",
        u"/a/b/c | / | ../..", u"/ab/c | /a/c | ../a/c", u"/a/b | /a/c:d | ./c:d", u"/a/b | /c:d | ../c:d",
        u"/a/b | /a/c/d:e | c/d:e", u"/a/b | /a//c | .//c", u"/a//b | /a/c | ../c", u"/a/b/c | /a//d | ..//d",
        u"/a/b?q | /a/b#f | b#f", u"/a/b?q | /a/b?q#f | #f", u"/a/b?q#g | /a/b?q | ",
        u"/a/b?q | /a/b?r#f | ?r#f", u"/a/?q | /a/ | .", u"/a/b | /a/c?x/../y#z | c?x/../y#z",
        u"/x/../a/b | /a/c | c",
        u"/a/b | /a/./x/../c | c", // leads where the target leads
        // with an origin
        u"http://h | http://h/a | a", u"http://h/a | http://h | http://h",
        u"http://h/a | http://i/a | http://i/a", u"http://h/a | https://h/a | https://h/a",
        u"/a | //h/a | //h/a", u"/a | mailto:x | mailto:x", u"mailto:x | mailto:x#f | #f",
        // no way in between
        u"/a | b | b", u"b | /a | /a", u"a/b | c | c",
        u"/a | .//b | .//b", // leads to "/.//b", not to "/b"
        u"/a | ..//b | ..//b"};
    for (const std::u16string& row : cases) {
        const auto [base, target, expected] = columns<3>(row);
        EXPECT_EQ(narrow(IRI(target).makeRelativeTo(IRI(base)).toString()), narrow(expected)) << narrow(row);
    }
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
    for (const std::u16string row : {u"/a%20b | /a%20b", u"/é | /%C3%A9", u"/\U0001F600 | /%F0%9F%98%80",
                                     u"a b\"<>\\^`{|}\x7F\t | a%20b%22%3C%3E%5C%5E%60%7B%7C%7D%7F%09",
                                     u"//[::1]/:?#!$&'()*+,;=@-._~ | //[::1]/:?#!$&'()*+,;=@-._~"}) {
        const auto [text, expected] = columns<2>(row);
        EXPECT_EQ(narrow(IRI(text).toAsciiString(false)), narrow(expected));
    }
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
