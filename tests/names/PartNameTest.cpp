#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <boost/regex.hpp>

#include <set>
#include <vector>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr auto narrow = &opc::toUDEString;

TEST(PartName, namesTheFirstRuleThatIsBroken) {
    const char* const m1 = "A part name shall not be empty [M1.1]";
    const char* const absolute = "Absolute URI forbidden as a part name.";
    const char* const m3 = "A part name shall not have empty segments [M1.3]";
    const char* const m4 = "A part name shall start with a forward slash ('/') character [M1.4]";
    const char* const m5 = "A part name shall not have a forward slash as the last character [M1.5]";
    const char* const m7 =
        "A segment shall not contain percent-encoded forward slash ('/'), or backward slash "
        "('') characters. [M1.7]";
    const char* const m8 = "A segment shall not contain percent-encoded unreserved characters. [M1.8]";
    const char* const m9 = "A segment shall not end with a dot ('.') character [M1.9]";
    const char* const m10 = "A segment shall include at least one non-dot character. [M1.10]";
    const std::pair<const char*, std::vector<std::u16string>> cases[] = {
        {m1, {u""}},
        {absolute, {u"http://h/a", u"x:/a/", u"mailto:a"}},
        {m4, {u"a/b", u"a/", u"?x", u"//", u"//h"}},
        {m5, {u"/a/", u"/a//", u"/a?b/", u"/a?//"}},
        {m3, {u"/a//b", u"//a/b", u"/a?//b", u"//./%41"}},
        {m10, {u"/a/..", u"/./b", u"/.../b"}},
        // A dot at the end hides the segment's escapes, and the first bad segment decides.
        {m9, {u"/a/b.", u"/a./b", u"/a?b.", u"/a%2F.", u"/b./%41"}},
        {m7, {u"/a%2Fb", u"/a%2fb", u"/a%5Cb", u"/%20%5c", u"/%2F%41"}},
        {m8, {u"/%41%2F", u"/%41/b.", u"/%41.xml", u"/a%7Eb", u"/a%7eb", u"/%2D", u"/%2e", u"/%5F"}},
        {m8, {u"/%30", u"/%39", u"/%5A", u"/%61", u"/%7a"}},
    };
    for (const auto& [message, names] : cases) {
        for (const std::u16string& name : names) {
            EXPECT_RAISES(InvalidPartName, message, PartName{name}) << narrow(name);
            EXPECT_RAISES(InvalidPartName, message, PartName{URI(name)}) << narrow(name);
        }
    }
    const char16_t* const none = nullptr;
    EXPECT_RAISES(InvalidPartName, m1, PartName{none});
}

TEST(PartName, whatIsNoURIComesOutAsThat) {
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string.", PartName{u"/a%2"});
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string.", PartName{u"/[a]//"});
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string. URI must contain only US-ASCII.",
                  PartName{u"/é."});
}

TEST(PartName, acceptsAllOtherNames) {
    for (const char16_t* name : {u"/a", u"/a%20b", u"/a%C3%A9", u"/a?b", u"/a#b", u"/.a/..b", u"/a b",
                                 u"/a:b", u"/a;x=1", u"/%40%5B%60%7B%7F%80%FF%00",
                                 u"/a%25"
                                 u"2F",
                                 u"/_RELS/.RELS"})
        EXPECT_EQ(PartName(name).toString(), name);
    const std::u16string deep = repeated(u"/a", 32000);
    EXPECT_EQ(PartName(deep).toString(), deep);
}

TEST(PartName, relationshipPartNames) {
    for (const std::u16string row :
         {u"/ | /_rels/.rels", u"/?x | /_rels/.rels", u"http://h/ | /_rels/.rels", u"/// | /_rels/.rels",
          u"/a | /_rels/a.rels", u"/a/b.xml | /a/_rels/b.xml.rels", u"/a?b/c | /_rels/a.rels",
          u"/a#b | /_rels/a.rels", u"/a_rels/b.rels | /a_rels/_rels/b.rels.rels",
          u"/_RELS/.RELS | /_RELS/_rels/.RELS.rels", u"/_rels/.RELS | /_rels/_rels/.RELS.rels",
          u"/_rels/a | /_rels/_rels/a.rels", u"/_rels/arels | /_rels/_rels/arels.rels",
          u"/_rels.rels | /_rels/_rels.rels.rels", u"/a/_rels | /a/_rels/_rels.rels",
          u"/a?/_rels/b.rels | /_rels/a.rels"}) {
        const auto [text, relationshipsPart] = columns<2>(row);
        const PartName name(text);
        EXPECT_FALSE(name.isRelationshipName()) << narrow(row);
        EXPECT_EQ(narrow(name.getRelationshipPartName()), narrow(relationshipsPart));
        EXPECT_RAISES(InvalidPartName, "Part name is not a relationship part name.",
                      name.getSourcePartName());
    }
    for (const std::u16string row :
         {u"/_rels/.rels | /", u"/_rels/.rels?x | /", u"/a/_rels/.rels | /a/",
          u"/a/_rels/b.xml.rels | /a/b.xml", u"/_rels/b.rels.xml.rels | /b.rels.xml",
          u"/_rels/x/y.rels | /_rels/y", u"/a/_rels/_rels/b.rels | /a/_rels/b",
          u"/a/_rels/b.rels?c.xml/d | /a/b", u"/a\n/_rels/\nb.rels | /a\n/\nb"}) {
        const auto [text, source] = columns<2>(row);
        const PartName name(text);
        EXPECT_TRUE(name.isRelationshipName()) << narrow(row);
        EXPECT_EQ(narrow(name.getSourcePartName()), narrow(source));
        EXPECT_RAISES(InvalidPartName, "Relationship part can't have an associated relationship part name",
                      name.getRelationshipPartName());
    }
}

/// Every name of up to six pieces gets the answer that the expression gives.
TEST(PartName, relationshipNamesAreThoseOfTheExpression) {
    const std::u16string pieces[] = {u"/_rels", u"/_rels/x", u".rels", u"/a", u"b", u"/.rels"};
    const boost::basic_regex<wchar_t> expression(L"^.*/_rels/.*\\.rels$");
    int matches = 0;
    for (int code = 0; code < 6 * 6 * 6 * 6 * 6; ++code) {
        std::u16string text(u"/a");
        for (int left = code; left > 0; left /= 6)
            text += pieces[left % 6];
        const bool expected = boost::regex_match(opc::toWideString(text), expression);
        ASSERT_EQ(PartName(text).isRelationshipName(), expected) << narrow(text);
        matches += expected ? 1 : 0;
    }
    EXPECT_GT(matches, 500);
}

TEST(PartName, longNamesGetAnAnswer) {
    const int times = 60000;
    for (const std::u16string& name :
         {repeated(u"/_rels", times) + u"/.rels", u"/" + repeated(u"a", times) + u"/_rels/b.rels",
          u"/_rels/" + repeated(u"a", times) + u".rels"})
        EXPECT_TRUE(PartName(name).isRelationshipName()) << narrow(name.substr(0, 20));
    for (const std::u16string& name :
         {repeated(u"/_rels", times), repeated(u"/_rel", times) + u"/.rels",
          u"/_rels/" + repeated(u".rels", times) + u"x", u"/_rel/" + repeated(u".rels", times)})
        EXPECT_FALSE(PartName(name).isRelationshipName()) << narrow(name.substr(0, 20));
}

TEST(PartName, extensionIsThatOfThePath) {
    EXPECT_EQ(PartName(u"/a.b/c.Xml?d.e").getExtension(), u"Xml");
    EXPECT_EQ(PartName(u"/a.b/c").getExtension(), u"");
}

TEST(PartName, comparesWithoutCase) {
    const PartName upper(u"/A.xml");
    const PartName lower(u"/a.xml");
    EXPECT_TRUE(upper == lower && !(upper != lower) && !(upper < lower) && !(lower < upper));
    EXPECT_TRUE(upper == u"/a.XML" && u"/a.XML" == lower && lower != u"a.xml" && u"" != lower);
    EXPECT_TRUE(upper < u"/b" && u"/B" < PartName(u"/c") && !(u"/c" < upper) && PartName(u"/Z") != lower);
    EXPECT_EQ(std::set<PartName>({PartName(u"/b"), upper, lower, PartName(u"/B")}).size(), 2U);
    EXPECT_TRUE(PartName(u"/?x") != PartName(u"/")); // both are the package root
}

} // namespace
