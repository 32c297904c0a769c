#include "transform/RelationshipTransform.hpp"
#include "canonical/XmlTree.hpp"
#include "support/EventComparison.hpp"
#include "support/PackageContent.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

const std::string ROOT =
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";

RelationshipsDocument read(const std::string& text) {
    const Bytes bytes = toBytes(text);
    SlowStream stream(bytes, 1000);
    return RelationshipsDocument::read(stream);
}

std::string transformed(const std::string& text, const RelationshipSelection& selection) {
    return canonicalize(select(read(text), selection));
}

std::string element(const std::string& id, const std::string& mode = "Internal") {
    return "<Relationship Id=\"" + id + "\" Target=\"t\" TargetMode=\"" + mode +
           "\" Type=\"u:t\"></Relationship>";
}

TEST(RelationshipTransform, writesTheSameForEachWayToWriteTheDocument) {
    const std::string expected =
        ROOT + element("r1") + element("r10", "External") + element("r2") + "</Relationships>";
    const std::string whole[] = {
        ROOT + element("r2") + element("r10", "External") + element("r1") + element("r3") +
            "</Relationships>",
        "\xEF\xBB\xBF<?xml version='1.0' standalone='yes'?><!--c-->\r\n<Relationships "
        "xmlns='http://schemas.openxmlformats.org/package/2006/relationships' xmlns:b='u:b'>\r\n "
        "<Relationship Target='t'\nType = 'u:t'  Id='r2'/><Relationship Type=\"u:t\" Id='r1' "
        "Target='t'>\t<!--\tc='&#228;'--> "
        "</Relationship><Relationship TargetMode='External' Target='t' Type='u:t' "
        "Id='r10'/></Relationships>",
    };
    for (const std::string& text : whole)
        EXPECT_EQ(transformed(text, {{"r10", "r1", "r2"}, {}}), expected) << text;
    EXPECT_EQ(transformed(whole[1], {{}, {}}), ROOT + "</Relationships>");
    EXPECT_EQ(transformed(whole[1], {{"r1"}, {"u:t"}}), expected);
    EXPECT_EQ(transformed(whole[1], {{"r1"}, {"u:T"}}), ROOT + element("r1") + "</Relationships>");
}

TEST(RelationshipTransform, escapesWhatAnAttributeCanNotHold) {
    EXPECT_EQ(transformed(ROOT + "<Relationship Id='&#xE4;' Target='&amp;&#60;&gt;&quot;\"' "
                                 "Type='\xF0\x90\x80\x80'/></Relationships>",
                          {{"\xC3\xA4"}, {}}),
              ROOT +
                  "<Relationship Id=\"\xC3\xA4\" Target=\"&amp;&lt;>&quot;&quot;\" TargetMode=\"Internal\" "
                  "Type=\"\xF0\x90\x80\x80\"></Relationship></Relationships>");
}

TEST(RelationshipTransform, sortsByCharactersBeyondTheFirstPlane) {
    const std::string text = ROOT + element("\xF0\x90\x80\x80") + element("\xEF\xBC\xA1") +
                             element("\xC3\xA4") + "</Relationships>";
    const RelationshipsDocument document = read(text);
    EXPECT_EQ(document.relationships[0].id, "\xC3\xA4");
    EXPECT_EQ(document.relationships[1].id, "\xEF\xBC\xA1");
    EXPECT_EQ(document.relationships[2].id, "\xF0\x90\x80\x80");
}

TEST(RelationshipTransform, refusesWhatCanBeUnderstoodInTwoWays) {
    const std::string refusal = "opc::standard_signatures::Refusal: ";
    const std::string withText = refusal + "There is text in it, or very much white space";
    const std::string invalid = "opc::model::InvalidXMLDocument: ";
    const std::string numbers =
        invalid + "A character is written as its number without need, which not all programs resolve";
    const std::string tags = invalid +
                             "A tag has a tab, or a line end at an equals sign, which not all programs "
                             "take for space";
    const auto utf16 = [](const std::string& text) {
        std::string wide = "\xFF\xFE";
        for (const char c : text)
            wide.append(1, c).append(1, '\0');
        return wide;
    };
    const struct {
        std::string content, outcome;
    } cases[] = {
        {ROOT + element("a") + element("a") + "</Relationships>",
         refusal + "Two relationships have the Id a"},
        {ROOT + "<x/></Relationships>", refusal + "The element x doesn't belong there"},
        {ROOT + "<Relationship xmlns='u:a' Id='a' Type='u:t' Target='t'/></Relationships>",
         refusal + "The element Relationship doesn't belong there"},
        {ROOT + "<Relationship Id='a' Type='u:t' Target='t'><x/></Relationship></Relationships>",
         refusal + "The element x doesn't belong there"},
        {"<p:Relationships xmlns:p='http://schemas.openxmlformats.org/package/2006/relationships'/>",
         refusal + "The element Relationships has a prefix"},
        {"<Relationships/>", refusal + "The element Relationships doesn't belong there"},
        {"<Relationships xml:space='preserve' "
         "xmlns='http://schemas.openxmlformats.org/package/2006/relationships'/>",
         refusal + "The root element has an attribute"},
        {ROOT + "<Relationship Id='a' Type='u:t'/></Relationships>",
         refusal + "A relationship has no Id, Type or Target"},
        {ROOT + "<Relationship Id='a' Type='u:t' Target='t' TargetMode='external'/></Relationships>",
         refusal + "A relationship has the attribute TargetMode with the value \"external\""},
        {ROOT + "<Relationship Id='a' Type='u:t' Target='t' a:Id='b' xmlns:a='u:a'/></Relationships>",
         refusal + "A relationship has the attribute Id with the value \"b\""},
        {ROOT + element(" a") + "</Relationships>", refusal + "The Id \" a\" isn't the same to every reader"},
        {ROOT + element("a&#xA;") + "</Relationships>",
         refusal + "The Id \"a\n\" isn't the same to every reader"},
        {ROOT + element("&#97;") + "</Relationships>", numbers},
        {utf16(ROOT + "</Relationships>"),
         invalid + "The document is in UTF-16, which not all programs read"},
        {ROOT + element("&#x61;") + "</Relationships>", numbers},
        {ROOT + element("&#x006f;") + "</Relationships>", numbers},
        {ROOT + "<!--&&#126;--></Relationships>", numbers},
        {ROOT + "<Relationship\tId='a' Type='u:t' Target='t'/></Relationships>", tags},
        {ROOT + "<Relationship Id='a' Type='u:t' Target='t'\t/></Relationships>", tags},
        {ROOT + "<Relationship Id='a' Type \n ='u:t' Target='t'/></Relationships>", tags},
        {ROOT + "<Relationship Id='a' Type= \r 'u:t' Target='t'/></Relationships>", tags},
        {ROOT + "</Relationships\t>", tags},
        {ROOT + "<!--'\"-->" + std::string(40000, ' ') + "<Relationship\tId='a'/></Relationships>", tags},
        {ROOT + element("") + "</Relationships>", refusal + "The Id \"\" isn't the same to every reader"},
        {ROOT + element("1a") + "</Relationships>", refusal + "The Id \"1a\" isn't the same to every reader"},
        {ROOT + element("a:b") + "</Relationships>",
         refusal + "The Id \"a:b\" isn't the same to every reader"},
        {ROOT + "<Relationship Id='a' Type='u:t&#9;' Target='t'/></Relationships>",
         refusal + "The Type \"u:t\t\" isn't the same to every reader"},
        {ROOT + "<Relationship Id='a' Type='u:t' Target='t  u'/></Relationships>",
         refusal + "The Target \"t  u\" isn't the same to every reader"},
        {ROOT + "<Relationship Id='a' Type='" + std::string(4097, 't') + "' Target='t'/></Relationships>",
         refusal + "The Type of a relationship has more than 4096 characters"},
        {ROOT + "text</Relationships>", withText},
        {ROOT + "<![CDATA[<]]></Relationships>", withText},
        {ROOT + std::string(2U << 20, '\n') + "</Relationships>", withText},
        {ROOT + element("b") + "</Relationships>", refusal + "A signed relationship is missing"},
        {ROOT + "<?p a?></Relationships>", refusal + "There is an instruction to programs in it"},
        {"<?xml version='1.1'?>" + ROOT + "</Relationships>", invalid + "The document isn't one of XML 1.0"},
        {"<!DOCTYPE r>" + ROOT + "</Relationships>",
         invalid + "the document has a document type declaration, which isn't allowed"},
        {ROOT + repeated("<Relationship Id='a' Type='' Target=''/>", 250001) + "</Relationships>",
         refusal + "There are more than 250000 relationships"},
    };
    for (const auto& [content, outcome] : cases)
        EXPECT_EQ(outcomeOf([&, text = content] {
                      transformed(text, {{"a"}, {}});
                  }),
                  outcome)
            << content.substr(0, 300);
}

/// Programs that trust the declaration read other characters than those that trust the bytes.
TEST(XmlTree, readsOnlyTheEncodingThatIsDeclared) {
    const std::string right;
    const std::string other =
        "opc::model::InvalidXMLDocument: The document is neither in UTF-8 nor in UTF-16";
    const std::string saysWide =
        "opc::model::InvalidXMLDocument: The document says that it is in UTF-16, and is in UTF-8";
    const std::string saysNarrow =
        "opc::model::InvalidXMLDocument: The document says that it is in UTF-8, and is in UTF-16";
    const std::string utf32("\0\0\xFE\xFF", 4);
    const struct {
        std::string declared, mark;
        std::size_t zerosInFront, zerosBehind; // of each character
        std::string outcome;
    } cases[] = {
        {"", "", 0, 0, right},
        {"utf-8", "", 0, 0, right},
        {"UTF-8", "\xEF\xBB\xBF", 0, 0, right},
        {"", "\xFF\xFE", 0, 1, right},
        {"utf-16", "\xFE\xFF", 1, 0, right},
        {"UTF-16", "", 0, 0, saysWide},
        {"UTF-16", "\xEF\xBB\xBF", 0, 0, saysWide},
        {"UTF-8", "\xFF\xFE", 0, 1, saysNarrow},
        {"UTF-16", "", 0, 1, other},
        {"", "", 1, 0, other},
        {"UTF-16LE", "\xFF\xFE", 0, 1, other},
        {"", utf32, 3, 0, other},
        {"", {utf32.rbegin(), utf32.rend()}, 0, 3, other},
        {"utf8", "", 0, 0, other},
        {"uTF-8", "", 0, 0, other},
        {"ISO-8859-1", "", 0, 0, other},
        {"US-ASCII", "", 0, 0, other},
        {"UTF-7", "", 0, 0, other},
    };
    for (const auto& [declared, mark, zerosInFront, zerosBehind, outcome] : cases) {
        const std::string encoding = declared.empty() ? "" : " encoding='" + declared + "'";
        std::string text = mark;
        for (const char c : "<?xml version='1.0'" + encoding + "?>" + ROOT + "</Relationships>")
            text.append(zerosInFront, '\0').append(1, c).append(zerosBehind, '\0');
        EXPECT_EQ(outcomeOf([&] {
                      const Bytes bytes = toBytes(text);
                      SlowStream stream(bytes, 1000);
                      XmlTree::read(stream);
                  }),
                  outcome)
            << declared << text.substr(0, 9);
    }
}

} // namespace
