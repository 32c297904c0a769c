#include "RulePairs.hpp"
#include "RulesOf.hpp"

#include <gtest/gtest.h>

namespace opc::inspection {
namespace {

using test::itemsWithParts;
using test::noted;
using test::RawItem;
using test::relationshipsWith;
using test::stored;

TEST(OfficeRules, markupCompatibility) {
    const std::string choice = "<mc:Choice Requires='a'><t>1</t></mc:Choice>",
                      fallback = "<mc:Fallback><t>1</t></mc:Fallback>";
    const auto alternate = [](const std::string& children) {
        return "<mc:AlternateContent>" + children + "</mc:AlternateContent>";
    };
    const struct {
        std::string attributes, children, expected;
    } cases[] = {
        {"mc:Ignorable='a'", alternate(choice + fallback), "no MCE-1, MCE-2, MCE-4"},
        {"mc:Ignorable='a b'", "", "error MCE-1"},
        {"mc:MustUnderstand='b'", "", "error MCE-1"},
        {"", alternate("<mc:Choice Requires='b'/>"), "error MCE-1"},
        {"mc:ProcessContent='b:x'", "", "error MCE-1"},
        {"", "<x xmlns:b='urn:microsoft' /><x mc:Ignorable='b'/>", "error MCE-1"},
        {"", "<x xmlns:b='urn:b' mc:Ignorable='b'/>", "no MCE-1"},
        {"", alternate(""), "error MCE-2"},
        {"", alternate(fallback + choice), "error MCE-2"},
        {"", alternate(choice + fallback + fallback), "error MCE-2"},
        {"", choice, "error MCE-2"},
        {"", alternate(choice + alternate(choice)), "error MCE-3"},
        {"", alternate("<mc:Choice Requires='a'>" + alternate(choice) + "</mc:Choice>"), "no MCE-3"},
        {"", alternate("<mc:Choice Requires=' '/>"), "warning MCE-4"},
        {"", alternate(choice + "<mc:Fallback x='1'/>"), "error MCE-5"},
        {"mc:Ignorable='a'", alternate(choice + "<mc:Fallback a:x='1'/>"), "no MCE-5"},
        {"", "<t xml:space='preserve'/>", "no MCE-6"},
        {"mc:MustUnderstand=''", "", "no MCE-7"},
        {"", alternate("<mc:Choice Requires='a' x='1'/>"), "warning MCE-5"},
        {"", alternate(choice + "<mc:Fallback xml:space='preserve'/>"), "error MCE-6"},
        {"mc:MustUnderstand='a'", "", "info MCE-7"},
        {"", "<a:x/>", "info MCE-8"},
        {"mc:Ignorable='a'", "<a:x a:y=''/>", "no MCE-8"},
        {"", "<ext><a:x/></ext>", "no MCE-8"},
        {"mc:ProcessContent='a:x'", "", "warning MCE-9"},
        {"mc:ProcessContent='a:x' mc:Ignorable='a'", "", "no MCE-9, MCE-10"},
        {"mc:PreserveElements='a:x'", "", "info MCE-10"},
        {"", alternate(choice + "<mc:Fallback><t>2</t></mc:Fallback>"), "info MCE-11"},
        {"", alternate(choice + "<mc:Fallback><p>2</p></mc:Fallback>"), "no MCE-11"},
        {"", alternate(choice + "<mc:Fallback/>"), "no MCE-11"},
    };
    for (const auto& [attributes, children, expected] : cases)
        EXPECT_EQ(
            test::toldBy(
                officeRules(),
                itemsWithParts({{"part.xml", "application/vnd.openxmlformats-officedocument.x+xml",
                                 "<d xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006' "
                                 "xmlns:a='urn:a' " +
                                     attributes + ">" + children + "</d>"}})),
            noted(expected))
            << attributes << ' ' << children;
}

TEST(OfficeRules, relationshipIds) {
    const std::string image =
        "<Relationship Id='rId1' Type='http://schemas.openxmlformats.org/officeDocument/2006/"
        "relationships/image' Target='i.png'/>";
    const struct {
        std::string xml, expected;
    } cases[] = {
        {"<a:blip r:embed='rId1'/>", "no P1-5"},
        {"<a:blip r:embed='rId2'/>", "error P1-5"},
        {"<a:blip r:embed='RID1'/>", "error P1-5"},
        {"<a:blip r:embed=''/>", "no P1-5"},
        {"<a:blip id='rId2'/>", "no P1-5"},
        {"<a:v o:relid='rId2'/>", "error P1-5"},
        {"<a:headerReference r:id='rId1'/>", "warning P1-5"},
        {"<a:other r:id='rId1'/>", "no P1-5"},
        {"<a:hyperlink r:id='rId1'/>", "warning P1-5"},
    };
    for (const auto& [xml, expected] : cases) {
        const std::string document =
            "<d xmlns:a='urn:schemas-microsoft-com:a' xmlns:o='urn:schemas-microsoft-com:office:office' "
            "xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'>" +
            xml + "</d>";
        std::vector<RawItem> items = itemsWithParts({}, image);
        items.push_back(stored("word/document.xml", document));
        EXPECT_EQ(test::toldBy(officeRules(), items), noted(expected)) << xml;
    }
}

TEST(OfficeRules, structure) {
    const std::string main =
        "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml";
    const std::string toMain = test::TO_DOCUMENT;
    const auto replaced = [](std::string text, const std::string& old, const std::string& by) {
        return text.replace(text.find(old), old.size(), by);
    };
    const RawItem types = test::contentTypesWith("");
    const auto typeOf = [&](const std::string& type) {
        return stored(types.name, replaced(types.data, main, type));
    };
    const struct {
        const char* what;
        std::vector<RawItem> items;
        std::string expected;
    } cases[] = {
        {"whole", {}, "no OFFICE-XML"},
        {"no relationship", {relationshipsWith("")}, "error P1-4"},
        {"dangling", {relationshipsWith(replaced(toMain, "word/document", "word/gone"))}, "error P1-4"},
        {"outside", {relationshipsWith(replaced(toMain, "/>", " TargetMode='External'/>"))}, "error P1-4"},
        {"type of plain XML", {typeOf("application/xml")}, "error P1-4"},
        {"type of another format", {typeOf("application/x-own+xml")}, "warning P1-4"},
        {"another format's own main part",
         {relationshipsWith(replaced(toMain, "officeDocument\" T", "x\" T"))},
         "no P1-4"},
        {"pieces",
         {stored("word/x.xml/[0].piece", "<a"), stored("word/x.xml/[1].last.piece", "/>"),
          test::contentTypesWith("<Default Extension='xml' ContentType='application/xml'/>")},
         "error P1-1"},
        {"nearly pieces", {stored("word/x.xml/[00].piece", "<a/>")}, "no P1-1"},
        {"not well-formed",
         {stored("word/document.xml", "<d xmlns:r='http://schemas.openxmlformats.org/"
                                      "officeDocument/2006/relationships'>")},
         "warning OFFICE-XML"},
    };
    for (const auto& [what, items, expected] : cases)
        EXPECT_EQ(test::toldBy(officeRules(), items), noted(expected)) << what;
    const std::string doctype = "<!DOCTYPE a [<!ENTITY b 'c'>]><a/>";
    std::string utf16 = "\xFF\xFE";
    for (const char c : doctype)
        utf16 += {c, '\0'};
    for (const std::string& document : {doctype, utf16, "<!--" + std::string(70000, '-') + "-->" + doctype})
        EXPECT_EQ(
            test::brokenRules(test::packageWith({stored("word/document.xml", document)}), SECURITY | OFFICE),
            "SEC-22")
            << document.substr(0, 20);
    const std::string second = replaced(replaced(toMain, "rId1", "rId2"), "word/document", "word/second");
    for (const unsigned profiles : {unsigned{OFFICE}, unsigned{SECURITY}, SECURITY | OFFICE | OPC})
        EXPECT_NE(test::brokenRules(test::packageWith({relationshipsWith(toMain + second),
                                                       stored("word/second.xml", "<a/>")}),
                                    profiles)
                      .find("SEC-37"),
                  std::string::npos)
            << profiles;
}

} // namespace
} // namespace opc::inspection
