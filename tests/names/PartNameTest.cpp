#include "support/Cases.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <regex>
#include <set>
#include <vector>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::toUDEString;

TEST(PartName, namesTheFirstRuleThatIsBroken) {
    forEachCase("part-names/refused.txt", [](const std::string& message, const std::u16string& name) {
        EXPECT_RAISES(InvalidPartName, message, PartName{name});
        EXPECT_RAISES(InvalidPartName, message, PartName{URI(name)});
    });
    const char16_t* const none = nullptr;
    EXPECT_RAISES(InvalidPartName, "A part name shall not be empty [M1.1]", PartName{none});
}

TEST(PartName, whatIsNoURIComesOutAsThat) {
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string.", PartName{u"/a%2"});
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string.", PartName{u"/[a]//"});
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string. URI must contain only US-ASCII.",
                  PartName{u"/é."});
}

TEST(PartName, acceptsAllOtherNames) {
    forEachCase("part-names/accepted.txt",
                [](const std::u16string& name) { EXPECT_EQ(PartName(name).toString(), name); });
    const std::u16string deep = repeated(u"/a", 32000);
    EXPECT_EQ(PartName(deep).toString(), deep);
}

TEST(PartName, relationshipPartNames) {
    forEachCase("part-names/sources.txt", [](const std::u16string& text, const std::string& part) {
        const PartName name(text);
        EXPECT_FALSE(name.isRelationshipName());
        EXPECT_EQ(toUDEString(name.getRelationshipPartName()), part);
        EXPECT_RAISES(InvalidPartName, "Part name is not a relationship part name.",
                      name.getSourcePartName());
    });
    forEachCase("part-names/relationships-parts.txt", [](const std::u16string& text,
                                                         const std::string& source) {
        const PartName name(text);
        EXPECT_TRUE(name.isRelationshipName());
        EXPECT_EQ(toUDEString(name.getSourcePartName()), source);
        EXPECT_RAISES(InvalidPartName, "Relationship part can't have an associated relationship part name",
                      name.getRelationshipPartName());
    });
}

/// Every name of up to six pieces gets the same answer as from the expression.
TEST(PartName, relationshipNamesAreThoseOfTheExpression) {
    const std::u16string pieces[] = {u"/_rels", u"/_rels/x", u".rels", u"/a", u"b", u"/.rels"};
    const std::regex expression("^.*/_rels/.*\\.rels$");
    int matches = 0;
    for (int code = 0; code < 6 * 6 * 6 * 6 * 6; ++code) {
        std::u16string text(u"/a");
        for (int left = code; left > 0; left /= 6)
            text += pieces[left % 6];
        const bool expected = std::regex_match(toUDEString(text), expression);
        ASSERT_EQ(PartName(text).isRelationshipName(), expected) << toUDEString(text);
        matches += expected ? 1 : 0;
    }
    EXPECT_GT(matches, 500);
}

TEST(PartName, longNamesGetAnAnswer) {
    const int times = 60000;
    for (const std::u16string& name :
         {repeated(u"/_rels", times) + u"/.rels", u"/" + repeated(u"a", times) + u"/_rels/b.rels",
          u"/_rels/" + repeated(u"a", times) + u".rels"})
        EXPECT_TRUE(PartName(name).isRelationshipName()) << toUDEString(name.substr(0, 20));
    for (const std::u16string& name :
         {repeated(u"/_rels", times), repeated(u"/_rel", times) + u"/.rels",
          u"/_rels/" + repeated(u".rels", times) + u"x", u"/_rel/" + repeated(u".rels", times)})
        EXPECT_FALSE(PartName(name).isRelationshipName()) << toUDEString(name.substr(0, 20));
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
