#include "coreproperties/CorePropertiesSerializer.hpp"
#include "coreproperties/CorePropertiesDocument.hpp"
#include "support/PackageContent.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/Errors.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <functional>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::convertStringToTime;
using KeywordList = CoreProperties::KeywordList;

const char* const M4_2 = "Core properties shall not use the Markup Compatibility namespace. [M4.2]";
const char* const M4_3 = "Core properties shall not use refinements to the Dublin Core except for the "
                         "\"created\" and \"modified\" elements. [M4.3]";
const char* const M4_4 =
    "Core properties shall not use the xml:lang attribute except on the \"keywords\" and "
    "\"value\" elements. [M4.4]";
const char* const M4_5_FORBIDDEN = "Core properties shall not use the xsi:type attribute except on the "
                                   "\"created\" and \"modified\" elements. [M4.5]";
const char* const M4_5_MISSING = "Core properties must use the xsi:type attribute on the \"created\" and "
                                 "\"modified\" elements. [M4.5]";

/// What stands in front of the first element of a document that was written, and behind its last.
const std::string HEAD =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n"
    "<cp:coreProperties xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/core-properties\" "
    "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:dcmitype=\"http://purl.org/dc/dcmitype/\" "
    "xmlns:dcterms=\"http://purl.org/dc/terms/\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
const std::string START = HEAD + ">\n";
const std::string END = "</cp:coreProperties>\n";

class CorePropertiesPart : public testing::Test {
protected:
    void readInto(CoreProperties& properties, const std::string& document) {
        const Bytes bytes = toBytes(document);
        opc::ByteArrayInAdaptor stream(bytes);
        serializer.read(stream, properties);
    }

    CoreProperties readDocument(const std::string& document) {
        CoreProperties properties;
        readInto(properties, document);
        return properties;
    }

    CoreProperties read(const std::string& elements, const std::string& attributes = {}) {
        return readDocument(corePropertiesDocument(elements, attributes));
    }

    std::string write(const CoreProperties& properties) { return serializer.write(properties); }

    CorePropertiesSerializer serializer;
};

/// All fields, each with a value of its own.
CoreProperties everyField() {
    CoreProperties properties;
    properties.setVersion(u"v");
    properties.setTitle(u"t <&> \u00E9\U0001F600");
    properties.setSubject(u"");
    properties.setRevision(u"7");
    properties.setModified(convertStringToTime(u"2024-02-29T13:45:59.75+01:00"));
    properties.setLastPrinted(convertStringToTime(u"1400"));
    properties.setLastModifiedBy(u"  m  ");
    properties.setLanguage(u"en-GB");
    properties.setKeywords({{u"one", u"en"}, {u"zwei", u"de-DE"}, {u"3", u""}});
    properties.setIdentifier(u"urn:i");
    properties.setDescription(u"line 1\r\nline 2\ttabbed");
    properties.setCreator(u"c");
    properties.setCreated(convertStringToTime(u"9999-12-31T23:59:59Z"));
    properties.setContentStatus(u"s");
    properties.setCategory(u"\"k'");
    return properties;
}

TEST_F(CorePropertiesPart, everyFieldIsWrittenInOrderAndReadBack) {
    const std::string document =
        START +
        "  <cp:category>\"k'</cp:category>\n"
        "  <cp:contentStatus>s</cp:contentStatus>\n"
        "  <dcterms:created xsi:type=\"dcterms:W3CDTF\">9999-12-31T23:59:59Z</dcterms:created>\n"
        "  <dc:creator>c</dc:creator>\n"
        "  <dc:description>line 1&#xD;\nline 2\ttabbed</dc:description>\n"
        "  <dc:identifier>urn:i</dc:identifier>\n"
        "  <cp:keywords xml:lang=\"en\">one\n"
        "    <cp:value xml:lang=\"de-DE\">zwei</cp:value>\n"
        "    <cp:value>3</cp:value>\n"
        "  </cp:keywords>\n"
        "  <dc:language>en-GB</dc:language>\n"
        "  <cp:lastModifiedBy>  m  </cp:lastModifiedBy>\n"
        "  <cp:lastPrinted>1400-01-01T00:00:00Z</cp:lastPrinted>\n"
        "  <dcterms:modified xsi:type=\"dcterms:W3CDTF\">2024-02-29T12:45:59Z</dcterms:modified>\n"
        "  <cp:revision>7</cp:revision>\n"
        "  <dc:subject></dc:subject>\n"
        "  <dc:title>t &lt;&amp;&gt; \xC3\xA9\xF0\x9F\x98\x80</dc:title>\n"
        "  <cp:version>v</cp:version>\n" +
        END;
    EXPECT_EQ(write(everyField()), document);
    EXPECT_EQ(write(readDocument(document)), document);
}

TEST_F(CorePropertiesPart, isAFixedPointAfterTheFirstWrite) {
    const std::string cases[] = {
        "",
        "<dc:title/>",
        "<dc:title> \n\t </dc:title>",
        "<dc:title>\n a </dc:title><dc:creator><![CDATA[<b>]]></dc:creator>",
        "<dc:description>a&#13;&#10;b&#13;c</dc:description>",
        "<cp:keywords/>",
        "<cp:keywords>\n  plain, text  \n</cp:keywords>",
        "<cp:keywords>a <cp:value> b </cp:value> lost <cp:value xml:lang='en'/></cp:keywords>",
        "<cp:keywords xml:lang='en'>\n<cp:value>\n b\n</cp:value></cp:keywords>",
        "<cp:contentType>lost</cp:contentType><cp:version>1</cp:version>",
        "<cp:lastPrinted>2024-02-29T13:45:10.9+01:00</cp:lastPrinted>",
        "<dcterms:modified xsi:type='dcterms:W3CDTF'>2024</dcterms:modified>",
        "<!-- comment --><?pi?>",
    };
    for (const std::string& elements : cases) {
        const std::string first = write(read(elements));
        EXPECT_EQ(write(readDocument(first)), first) << elements;
    }
}

TEST_F(CorePropertiesPart, whatHasNoTextFormLeavesItsElementOut) {
    CoreProperties properties;
    const std::string nothing = HEAD + "/>\n";
    EXPECT_EQ(write(properties), nothing);
    EXPECT_TRUE(readDocument(nothing).isEmpty());
    properties.setKeywords({});
    properties.setCreated(boost::posix_time::not_a_date_time);
    properties.setModified(boost::posix_time::pos_infin);
    properties.setLastPrinted(boost::posix_time::neg_infin);
    EXPECT_FALSE(properties.isEmpty());
    EXPECT_EQ(write(properties), nothing);
}

TEST_F(CorePropertiesPart, readsKeywords) {
    const std::pair<const char*, KeywordList> cases[] = {
        {"<cp:keywords/>", {{u"", u""}}},
        {"<cp:keywords>red, green; blue \n</cp:keywords>", {{u"red, green; blue", u""}}},
        {"<cp:keywords xml:lang='en'>  a</cp:keywords>", {{u"  a", u"en"}}},
        {"<cp:keywords>a <cp:value xml:lang='de'> b </cp:value>lost<cp:value/></cp:keywords>",
         {{u"a", u""}, {u" b", u"de"}, {u"", u""}}},
        {"<cp:keywords xml:lang='en'><cp:value>b</cp:value>lost</cp:keywords>", {{u"", u"en"}, {u"b", u""}}},
    };
    for (const auto& [element, keywords] : cases) {
        EXPECT_EQ(read(element).getKeywords().value(), keywords) << element;
    }
}

TEST_F(CorePropertiesPart, readsElementsInAnyOrderUnderAnyPrefix) {
    const CoreProperties properties = readDocument(
        R"(<?xml version="1.0" encoding="utf-8"?>)"
        R"(<coreProperties xmlns="http://schemas.openxmlformats.org/package/2006/metadata/core-properties")"
        R"( xmlns:e="http://purl.org/dc/elements/1.1/"><version>1</version><e:title>t</e:title>)"
        R"(<contentType>ignored</contentType><category> k </category></coreProperties>)");
    EXPECT_EQ(properties.getVersion().value(), u"1");
    EXPECT_EQ(properties.getTitle().value(), u"t");
    EXPECT_EQ(properties.getCategory().value(), u" k ");
    EXPECT_FALSE(properties.getSubject());
}

TEST_F(CorePropertiesPart, readsTimes) {
    const auto expectTime = [](const CoreProperties::Time& time, const std::string& expected,
                               const std::string& text) {
        EXPECT_EQ(time ? opc::toUDEString(opc::convertTimeToString(*time)) : "", expected) << text;
    };
    const auto printed = [this](const std::string& text) {
        return read("<cp:lastPrinted>" + text + "</cp:lastPrinted>").getLastPrinted();
    };
    const auto expectCreatedAndModified = [&](const std::string& text, const std::string& expected) {
        const CoreProperties typed =
            read("<dcterms:created xsi:type='dcterms:W3CDTF'>" + text + "</dcterms:created>" +
                 "<dcterms:modified xsi:type='dcterms:W3CDTF'>" + text + "</dcterms:modified>");
        expectTime(typed.getCreated(), expected, text);
        expectTime(typed.getModified(), expected, text);
    };
    // An empty result: the field stays absent.
    for (const std::string row :
         {"\n  2024-02-29T13:45:10Z\n | 2024-02-29T13:45:10Z",
          "2024-02-29T13:45:10.1234567 | 2024-02-29T13:45:10Z",
          "2024-03-01T00:30:00.5+01:00 | 2024-02-29T23:30:00Z", "2024-02-29T24:00:00Z | ",
          "2024-02-29T13:45:60Z | ", "0001-01-01T00:00:00Z | ", "-0044-03-15T12:00:00Z | ",
          "1399-12-31T23:59:59Z | ", "1400-01-01T00:00:00+00:01 | ", "12024-02-29T13:45:10Z | "}) {
        const auto [text, expected] = columns<2>(row);
        expectCreatedAndModified(text, expected);
        expectTime(printed(text), expected, text);
    }
    for (const std::string row : {"2024 | 2024-01-01T00:00:00Z", "2024-02 | 2024-02-01T00:00:00Z",
                                  "2024-02-29 | 2024-02-29T00:00:00Z", "12024 | ", "2024-02-29Z | "}) {
        const auto [text, expected] = columns<2>(row);
        expectCreatedAndModified(text, expected);
        EXPECT_THROW(printed(text), InvalidPartContent) << "must be a date and a time";
    }
}

TEST_F(CorePropertiesPart, rulesOfTheStandardAreCheckedInOrder) {
    const std::string mc = "='http://schemas.openxmlformats.org/markup-compatibility/2006' ";
    const std::string untyped = "<dcterms:created>2024</dcterms:created>";
    const std::string inGerman = "<dc:title xml:lang='de'>t</dc:title>";
    const std::string refined = "<dcterms:alternative>t</dcterms:alternative>";
    struct Case {
        std::string elements, attributes;
        const char* message;
    };
    const Case cases[] = {
        {"", "xmlns" + mc, M4_2},
        {"", "xmlns:mc" + mc, M4_2},
        {refined + untyped, "xmlns:mc" + mc, M4_2},
        {refined, "", M4_3},
        {"<dc:creator xml:lang='de'>t</dc:creator>" + untyped + refined, "", M4_3},
        {"<dcterms:abstract>a</dcterms:abstract>", "", M4_3},
        {inGerman, "", M4_4},
        {inGerman + untyped, "", M4_4},
        {untyped + inGerman, "", M4_5_MISSING},
        {"<dc:title xml:lang='' xsi:type='dc:SimpleLiteral'>t</dc:title>", "", M4_4},
        {"", "xsi:type='cp:CT_CoreProperties'", M4_5_FORBIDDEN},
        {"<dc:title xsi:type='dc:SimpleLiteral'>t</dc:title>", "", M4_5_FORBIDDEN},
        {"<cp:keywords><cp:value xsi:type='cp:CT_Keyword'>k</cp:value></cp:keywords>", "", M4_5_FORBIDDEN},
        {"<cp:lastPrinted xsi:type='xs:dateTime'>2024-02-29T13:45:10Z</cp:lastPrinted>",
         "xmlns:xs='http://www.w3.org/2001/XMLSchema'", M4_5_FORBIDDEN},
        {"<dcterms:created xsi:type='t:W3CDTF'>2024</dcterms:created>", "xmlns:t='http://purl.org/dc/terms/'",
         M4_5_FORBIDDEN},
        {"<dcterms:modified xsi:type='dcterms:Period'>2024</dcterms:modified>", "", M4_5_FORBIDDEN},
        {"<dcterms:modified>2024</dcterms:modified>", "", M4_5_MISSING},
    };
    for (const Case& c : cases) {
        CoreProperties properties = everyField();
        EXPECT_RAISES(InvalidPartContent, c.message,
                      readInto(properties, corePropertiesDocument(c.elements, c.attributes)))
            << c.elements;
        EXPECT_TRUE(properties.isEmpty()) << c.elements;
    }
    EXPECT_EQ(read("<dc:title xmlns:mc" + mc + ">t</dc:title>").getTitle().value(), u"t")
        << "the root element alone is looked at";
    EXPECT_TRUE(read("<dcterms:created xsi:type=' dcterms:W3CDTF\n'>2024</dcterms:created>").getCreated())
        << "white space round a qualified name is none of its value";
}

TEST_F(CorePropertiesPart, whatTheSchemaRefusesLeavesTheTargetAsItWas) {
    const std::string empty = corePropertiesDocument("");
    CoreProperties properties = everyField();
    for (const std::string& document :
         {std::string(), std::string("<a/>"), std::string("<!DOCTYPE a><a/>"), empty.substr(0, 100),
          corePropertiesDocument("<cp:other/>"),
          corePropertiesDocument("<cp:keywords xml:lang='no tag'>k</cp:keywords>"),
          corePropertiesDocument("<cp:keywords><dc:title>t</dc:title></cp:keywords>"),
          corePropertiesDocument("", "id='1'")})
        EXPECT_THROW(readInto(properties, document), InvalidPartContent) << document;
    EXPECT_EQ(write(properties), write(everyField()));
    EXPECT_RAISES(InvalidPartContent,
                  "XML content must be UTF-8 or UTF-16 or empty (i.e., absent XML declaration)",
                  readDocument(replaced(empty, "UTF-8", "US-ASCII")));
}

TEST_F(CorePropertiesPart, valuesComeBackOrAreRefused) {
    using P = CoreProperties;
    const auto compose = [](const std::function<void(P&)>& set) {
        P properties;
        set(properties);
        return outcomeOf([&] { CorePropertiesSerializer().write(properties); });
    };
    for (const char16_t unit : std::u16string(u"\u0001\u0008\u000B\u001F\uFFFE\uFFFF\xD800\xDC00") + u'\0')
        for (const std::u16string& text : {std::u16string{unit}, std::u16string{u'a', unit, u'b'}}) {
            EXPECT_NE(compose([&](P& p) { p.setTitle(text); }), "") << opc::toUDEString(text);
            EXPECT_NE(compose([&](P& p) { p.setKeywords({{u"a", u""}, {text, u""}}); }), "");
        }
    for (const char16_t* text :
         {u"\r", u"a\r\nb", u" a ", u" ", u"\t\n", u"\u0085\u2028", u"\uFEFF", u"\U0010FFFF", u"]]>&#13;"}) {
        EXPECT_EQ(compose([&](P& p) { p.setTitle(text); }), "") << opc::toUDEString(text);
        EXPECT_EQ(compose([&](P& p) { p.setKeywords({{text, u"en-GB"}, {text, u""}}); }), "");
    }
    for (const char16_t* language : {u" en", u"en_GB", u"123456789", u"-"})
        EXPECT_NE(compose([&](P& p) {
                      p.setKeywords({{u"a", language}});
                  }),
                  "")
            << opc::toUDEString(language);
    using boost::gregorian::date;
    using boost::posix_time::hours;
    using boost::posix_time::ptime;
    for (const ptime& time : {ptime(date(1400, 1, 1)) - hours(1), ptime(date(9999, 12, 31), hours(25))})
        EXPECT_EQ(compose([&](P& p) { p.setLastPrinted(time); }),
                  "opc::model::InvalidPartContent: A time lies outside the years 1400 to 9999");
    EXPECT_EQ(compose([&](P& p) { p.setModified(ptime(date(9999, 12, 31), hours(23))); }), "");
    EXPECT_EQ(compose([&](P& p) { p.setCreator(std::u16string(1, u'\0')); }),
              "opc::model::InvalidPartContent: The core property \"creator\" has a value that doesn't come "
              "back from a "
              "document as it is");
}

TEST(CorePropertyField, isAbsentUntilItIsSetAndAgainByNone) {
    CoreProperties properties;
    for (const CorePropertyField& field : CorePropertyField::all()) {
        field.visit(properties, [](auto& value) { value.emplace(); });
        EXPECT_FALSE(properties.isEmpty()) << field.name();
        field.visit(properties, [](auto& value) { value = boost::none; });
        EXPECT_TRUE(properties.isEmpty()) << field.name();
    }
}

} // namespace
