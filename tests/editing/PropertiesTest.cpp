#include "support/PackageTest.hpp"
#include "support/Throws.hpp"

#include <opc/editing/Editor.hpp>
#include <opc/editing/Properties.hpp>

#include <opc/model/Errors.hpp>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

const std::string CUSTOM = "http://schemas.openxmlformats.org/officeDocument/2006/custom-properties";
const std::string TYPES = "http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes";
const std::string RELATIONSHIPS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

class PropertiesTest : public PackageTest {
protected:
    PropertiesTest() : PackageTest({u"/a.xml", u"/p.xml"}) {}

    Package& opened() {
        package.open(OpenMode::ReadWrite);
        return package;
    }

    /// The part /p.xml holds the properties.
    void hold(const std::string& type, const std::string& document) {
        writeAll(package.getPart(PartName(u"/p.xml")), document);
        package.createInternalRelationship(opc::toString(type, true), URI(u"/p.xml"));
    }
    void holdCustom(const std::string& elements, const std::string& declarations) {
        hold(RELATIONSHIPS + "custom-properties",
             "<Properties xmlns='" + CUSTOM + "' " + declarations + ">" + elements + "</Properties>");
    }

    std::string list(PropertyKind kind) const {
        std::string lines;
        for (const Property& property : readProperties(package, kind)) {
            lines += property.name + ' ' + property.value.type + " [" + property.value.text + ']';
            for (const PropertyValue& item : property.value.items)
                lines += ' ' + item.type + '=' + item.text;
            lines += (property.linkTarget.empty() ? "" : " ->" + property.linkTarget) + '\n';
        }
        return lines;
    }

    std::string text(const char16_t* name = u"/p.xml") const {
        const Part part = package.getPart(PartName(name));
        part.getInputStream().open();
        return readAll(part);
    }

    Editor editor{opened()};
};

TEST_F(PropertiesTest, areReadWithTheirTypes) {
    holdCustom(
        "\n <property fmtid='{A}' pid='2' name='Text &amp; more'>\n  <v:lpwstr> a <!-- c --><![CDATA[<b>]]> "
        "</v:lpwstr>\n </property>"
        "<property pid='3' name='n'><v:i4> 7 </v:i4></property><property pid='4' "
        "name='b'><v:bool>true</v:bool></property>"
        "<property pid='5' name='t' "
        "linkTarget='Mark'><v:filetime>2024-02-29T13:45:59Z</v:filetime></property>"
        "<property pid='6' name='list'><v:vector size='2' "
        "baseType='variant'><v:variant><v:lpwstr>x</v:lpwstr>"
        "</v:variant><v:variant><v:i4>1</v:i4></v:variant></v:vector></property>"
        "<property pid='7' name='odd'><o xmlns='http://o/'>y</o></property><property pid='8' name='none'/>",
        "xmlns:v='" + TYPES + "'");
    EXPECT_EQ(list(PropertyKind::Custom),
              "Text & more lpwstr [ a <b> ]\nn i4 [7]\nb bool [true]\n"
              "t filetime [2024-02-29T13:45:59Z] ->Mark\nlist vector [] lpwstr=x i4=1\n"
              "odd unknown [y]\nnone unknown []\n");
    EXPECT_EQ(list(PropertyKind::Extended), "");
}

TEST_F(PropertiesTest, extendedOnesAreReadInStrictDocuments) {
    hold("http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties",
         "<p:Properties xmlns:p='http://purl.oclc.org/ooxml/officeDocument/extendedProperties' "
         "xmlns:vt='http://purl.oclc.org/ooxml/officeDocument/docPropsVTypes'><p:Company>A&amp;B</"
         "p:Company><p:Pages>3</p:Pages>"
         "<p:TitlesOfParts><vt:vector><vt:lpstr>One</vt:lpstr></vt:vector></p:TitlesOfParts><p:New>x</"
         "p:New></p:Properties>");
    EXPECT_EQ(list(PropertyKind::Extended),
              "Company lpwstr [A&B]\nPages i4 [3]\nTitlesOfParts vector [] lpstr=One\nNew unknown [x]\n");
    changeProperties(editor, PropertyKind::Extended,
                     {false, {"Pages"}, {{"Company", {{}, "C<D", {}}}, {"Manager", {{}, "M", {}}}}});
    EXPECT_EQ(
        list(PropertyKind::Extended),
        "Company lpwstr [C<D]\nTitlesOfParts vector [] lpstr=One\nNew unknown [x]\nManager lpwstr [M]\n");
}

TEST_F(PropertiesTest, changesKeepEveryOtherByte) {
    const std::string before = "<?xml version='1.0'?>\r\n<Properties  xmlns='" + CUSTOM + "'><!-- a -->\n\t";
    const std::string odd =
        "<property fmtid='{X}' pid='9' name='odd'  linkTarget='L'><o xmlns='http://o/'/></property>\n";
    hold(RELATIONSHIPS + "custom-properties",
         before + "<property pid='2' name='A' b='c'><x:i4 xmlns:x='" + TYPES + "'>1</x:i4></property>" + odd +
             "<property pid='4' name='B'/><property pid='4' name='b'/>\n</Properties>\n");
    changeProperties(
        editor, PropertyKind::Custom,
        {false, {"B", "missing"}, {{"a", {"bool", "true", {}}}, {"New", {"lpwstr", "x\ny\"&", {}}}}});
    const std::string declared = " xmlns:vt=\"" + TYPES + "\">";
    EXPECT_EQ(
        text(),
        before + "<property pid='2' name='A' b='c'><vt:bool" + declared + "true</vt:bool></property>" + odd +
            "<property fmtid=\"{D5CDD505-2E9C-101B-9397-08002B2CF9AE}\" pid=\"10\" name=\"New\"><vt:lpwstr" +
            declared + "x&#x0A;y&quot;&amp;</vt:lpwstr></property>\n</Properties>\n");
    EXPECT_EQ(list(PropertyKind::Custom), "A bool [true]\nodd unknown [] ->L\nNew lpwstr [x\ny\"&]\n");
    std::string told;
    for (const Change& change : editor.changes())
        told += describe(change) + '\n';
    EXPECT_NE(told.find("change property A in /p.xml from \"1\" to \"true\"\n"), std::string::npos) << told;
}

TEST_F(PropertiesTest, whatIsMissingIsMade) {
    changeProperties(editor, PropertyKind::Custom, {false, {"gone"}, {}});
    EXPECT_TRUE(editor.changes().empty());
    package.createPart(PartName(u"/docProps/app.xml"), ContentType(u"application/xml"), StandardPartInfo());
    changeProperties(editor, PropertyKind::Custom,
                     {false, {}, {{"First", {"i4", "1", {}}}, {"Second", {"r8", "1.5", {}}}}});
    changeProperties(editor, PropertyKind::Custom, {false, {}, {{"first", {"i4", "2", {}}}}});
    changeProperties(editor, PropertyKind::Extended, {false, {}, {{"Company", {{}, "C", {}}}}});
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(list(PropertyKind::Custom), "First i4 [2]\nSecond r8 [1.5]\n");
    EXPECT_EQ(list(PropertyKind::Extended), "Company lpwstr [C]\n");
    EXPECT_EQ(
        opc::toUDEString(package.getPart(PartName(u"/docProps/custom.xml")).getContentType().toString()),
        "application/vnd.openxmlformats-officedocument.custom-properties+xml");
    EXPECT_TRUE(package.hasPart(PartName(u"/docProps/app2.xml"))) << "the usual name is taken";
    EXPECT_NE(text(u"/docProps/custom.xml").find("pid=\"2\" name=\"First\""), std::string::npos);
}

TEST_F(PropertiesTest, aBrokenDocumentIsNamedAndStays) {
    const std::string broken = "<Properties xmlns='" + CUSTOM + "'><property>";
    hold(RELATIONSHIPS + "custom-properties", broken);
    hold(RELATIONSHIPS + "extended-properties", "<Properties xmlns='http://o/'/>");
    const std::string before = text();
    for (const PropertyKind kind : {PropertyKind::Custom, PropertyKind::Extended}) {
        try {
            changeProperties(editor, kind, {true, {}, {{"Company", {"lpwstr", "C", {}}}}});
            ADD_FAILURE();
        } catch (const InvalidPartContent& e) {
            EXPECT_EQ(std::string(e.details()).substr(0, 10), "in /p.xml;") << e.details();
        }
    }
    EXPECT_EQ(text(), before);
    EXPECT_TRUE(editor.changes().empty());
}

TEST_F(PropertiesTest, valuesFitTheirTypes) {
    const struct {
        const char* type;
        std::vector<const char*> good, bad;
    } cases[] = {
        {"i1", {"-128", "127", "+1"}, {"-129", "128", "", "1.0", " 1", "--1"}},
        {"ui2", {"0", "65535"}, {"-1", "65536"}},
        {"i8", {"-9223372036854775808"}, {"9223372036854775808", "99999999999999999999"}},
        {"ui8", {"18446744073709551615"}, {"18446744073709551616"}},
        {"bool", {"true", "0"}, {"yes", "TRUE"}},
        {"r8", {"1", "-1.5e-3", "NaN", ".5"}, {"1e", "e1", "1,5", ""}},
        {"decimal", {"1.5"}, {"1e3", "1.2.3"}},
        {"filetime", {"2024-02-29T13:45:59Z"}, {"2024-02-30T13:45:59Z", "2024", "now"}},
        {"lpwstr", {"", " a\n", "\xF0\x9F\x98\x80"}, {"\x01", "\xFF", "\xEF\xBF\xBF"}},
        {"vector", {}, {""}},
        {"unknown", {}, {"a"}},
    };
    for (const auto& [type, good, bad] : cases) {
        for (const char* const value : good)
            EXPECT_EQ(findDefect(PropertyKind::Custom, {"a", {type, value, {}}}), "") << type;
        for (const char* const value : bad)
            EXPECT_NE(findDefect(PropertyKind::Custom, {"a", {type, value, {}}}), "") << type << ' ' << value;
    }
    EXPECT_EQ(findDefect(PropertyKind::Extended, {"Pages", {{}, "x", {}}}),
              "Pages=x isn't a whole number within the range of i4");
    EXPECT_EQ(findDefect(PropertyKind::Extended, {"Other", {{}, "x", {}}}),
              "Other isn't an extended property");
    EXPECT_THROW(changeProperties(editor, PropertyKind::Custom,
                                  {false, {}, {{"a", {"i4", "1", {}}}, {"A", {"i4", "2", {}}}}}),
                 InvalidPartContent);
}

TEST_F(PropertiesTest, labelsAreFound) {
    holdCustom(
        "<property pid='2' name='MSIP_Label_1a-2b_Name'><v:lpwstr>Secret</v:lpwstr></property>"
        "<property pid='3' name='MSIP_Label_'/><property pid='4' name='Other'/>"
        "<property pid='5' name='MSIP_Label_3c_Name'/><property pid='6' name='MSIP_Label_1a-2b_Set_Date'/>",
        "xmlns:v='" + TYPES + "'");
    std::string told;
    for (const SensitivityLabel& label : findLabels(readProperties(package, PropertyKind::Custom)))
        for (const Property& setting : label.settings)
            told += label.id + '.' + setting.name + '=' + setting.value.text + ' ';
    EXPECT_EQ(told, "1a-2b.Name=Secret 1a-2b.Set_Date= 3c.Name= ");
}

} // namespace
