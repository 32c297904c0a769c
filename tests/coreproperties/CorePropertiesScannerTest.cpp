#include "coreproperties/CorePropertiesScanner.hpp"
#include "coreproperties/CorePropertiesComposer.hpp"
#include "coreproperties/CorePropertiesDocument.hpp"
#include "support/CorePropertiesComparison.hpp"
#include "support/MutatedDocument.hpp"
#include "support/Texts.hpp"

#include <gtest/gtest.h>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string ELEMENTS =
    "\n\t<cp:category> a  b </cp:category><cp:contentStatus /><cp:contentType>ignored</cp:contentType>"
    "<dcterms:created xsi:type=\"dcterms:W3CDTF\">2024-02-29T23:59:59Z</dcterms:created>\r\n"
    "<dc:creator>\xC3\x89va \xE4\xB8\xAD\xED\x9F\xBF\xC2\xA0</dc:creator>"
    "<dc:description>'quoted' \"lines\"\n\tof text\r\n\r&lt;&amp;&gt;&#x4E2D;\r</dc:description><!-- c "
    "--><dc:identifier></dc:identifier>"
    "<cp:keywords xml:lang='en'>one \n  <cp:value>zwei </cp:value>\n<cp:value "
    "xml:lang='de-DE'/></cp:keywords>"
    "<dc:language>x</dc:language><cp:lastModifiedBy>l</cp:lastModifiedBy>"
    "<cp:lastPrinted>1400-01-31T00:00:00.471</cp:lastPrinted>"
    "<dcterms:modified xsi:type='dcterms:W3CDTF'>9999-12-31T00:00:00.2260426Z</dcterms:modified>"
    "<cp:revision>7</cp:revision><dc:subject>s</dc:subject><dc:title> </dc:title "
    "><cp:version>\n</cp:version>";
const std::string DOCUMENT =
    corePropertiesDocument(ELEMENTS, "xmlns:dcmitype='http://purl.org/dc/dcmitype/'");

/// The same with core properties' own names in the default namespace.
std::string withoutPrefix(std::string document) {
    document = replaced(document, "xmlns:cp", "xmlns");
    while (document.find("cp:") != std::string::npos)
        document = replaced(document, "cp:", "");
    return document;
}

TEST(CorePropertiesScanner, theUsualFormsAreRecognised) {
    const std::string head = R"(<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/)"
                             R"(metadata/core-properties")";
    CorePropertiesComparison comparison;
    for (const std::string& document :
         {DOCUMENT, withoutPrefix(DOCUMENT), corePropertiesDocument("", "xmlns:a='b'"),
          "\xEF\xBB\xBF" + head + "/>\n", head + "><cp:keywords/></cp:coreProperties>",
          head + "><cp:keywords>\n <cp:value>b</cp:value></cp:keywords></cp:coreProperties>",
          corePropertiesDocument("<dc:title>" + std::string(100000, 'x') + "</dc:title>"),
          corePropertiesDocument("<dc:title>" + std::string(2000000, 'x') + "</dc:title>")}) {
        EXPECT_TRUE(CorePropertiesComparison::isRecognised(toBytes(document))) << document.substr(0, 1000);
        EXPECT_EQ(comparison.findDifference(toBytes(document)), "");
    }
}

TEST(CorePropertiesScanner, everyDoubtIsLeftToTheParser) {
    const std::pair<const char*, std::vector<const char*>> doubts[] = {
        {"encoding=\"UTF-8\"", {"encoding=\"UTF-16\""}},
        {"xmlns:cp", {"xmlns:c", "xmlns"}},
        {"xmlns:dc=", {"xmlns:d="}},
        {"xmlns:xsi", {"xmlns:xs"}},
        {R"( xmlns:dc="http://purl.org/dc/elements/1.1/")", {""}},
        {R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance")", {""}},
        {"xmlns:dcmitype='http://purl.org/dc/dcmitype/'",
         {"xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006'", "xmlns:a=''", "xmlns='b'",
          "id='1'"}},
        {"dc/terms", {"dc/other"}},
        {"<cp:category>", {"<cp:category xml:lang='en'>", "<dc:category>", "<cp:version/><cp:category>"}},
        {"</cp:category>",
         {"</cp:category>text", "<a/></cp:category>", "", "<!-- --></cp:category>",
          "</cp:category><!-- -- -->"}},
        {" a  b ",
         {"&a;", "&#9;", "&#10;", "&#13;", "&#x85;", "a>b", "\x7F", "\xC2\x80", "\xED\xA0\x80",
          "\xEE\x80\x80", "\xFF", "\xC3", "\xC0\xA0", "\xF0\x9F\x98\x80"}},
        {" xsi:type=\"dcterms:W3CDTF\"",
         {"", " xsi:type='dc:W3CDTF'", " xml:lang='en'", " xsi:type=\"dcterms:W3CDTF\" xml:lang='en'"}},
        {"<cp:lastPrinted>", {"<cp:lastPrinted xsi:type='dcterms:W3CDTF'>"}},
        {"2024-02-29T23:59:59Z",
         {"", "2023-02-29T23:59:59Z", "1399-12-31T23:59:59Z", "2024-13-01T23:59:59Z", "2024-00-01T23:59:59Z",
          "2024-01-00T23:59:59Z", "2024-01-01T24:00:00Z", "2024-01-01T00:60:00Z", "2024-01-01T00:00:60Z",
          "2024-01-01T00:00:00+00:00", "2024-01-01T00:00:00.Z", "2024-01-01T00:00:00.1234567890",
          "2024-01-01T00:00:00.5z", " 2024-01-01T00:00:00Z", "2024-01-01"}},
        {"'en'", {"''", "'en_GB'", "'abcdefghi'", "'a-'", "'en' xml:space='preserve'"}},
        {"one", {"o<a/>", "o<!-- -->", "&#xA;"}},
        {"zwei ", {"<cp:value/>"}},
        {"</cp:value>\n", {"</cp:value>\nlost", "</cp:value><cp:other/>", ""}},
        {"</cp:coreProperties>", {"</cp:coreProperties><a/>", "", "</cp:category>"}},
    };
    for (const auto& [from, replacements] : doubts)
        for (const char* to : replacements)
            EXPECT_FALSE(CorePropertiesComparison::isRecognised(toBytes(replaced(DOCUMENT, from, to))))
                << from << " -> " << to;
    for (const std::string& document :
         {std::string(), std::string("<cp:coreProperties/>"), std::string("<coreProperties/>"),
          replaced(withoutPrefix(DOCUMENT), "<version>", "<cp:version>"),
          replaced(withoutPrefix(DOCUMENT), "</version>", "</cp:version>")})
        EXPECT_FALSE(CorePropertiesComparison::isRecognised(toBytes(document))) << document;
}

TEST(CorePropertiesScanner, whatIsRecognisedTheParserFindsToo) {
    std::mt19937 random(20240229);
    CorePropertiesComparison comparison;
    int recognised = 0;
    for (int i = 0; i < 40000; ++i) {
        const Bytes document = mutate(toBytes(i % 2 == 0 ? DOCUMENT : withoutPrefix(DOCUMENT)), random);
        recognised += CorePropertiesComparison::isRecognised(document) ? 1 : 0;
        ASSERT_EQ(comparison.findDifference(document), "") << toText(document);
    }
    EXPECT_GT(recognised, 500);
}

TEST(CorePropertiesComposer, writesEveryCharacterAsXercesDoes) {
    std::u16string plain;
    std::string document;
    for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
        CoreProperties properties;
        properties.setTitle(std::u16string(1, static_cast<char16_t>(unit)));
        if (composePlainCoreProperties(properties, document))
            plain += static_cast<char16_t>(unit);
    }
    EXPECT_EQ(plain.size(), 94U + 0xD800 - 0xA0) << "white space alone isn't plain";
    plain += u" \t\n";
    CoreProperties properties;
    properties.setTitle(plain);
    properties.setKeywords({{plain, u""}, {plain, u"en"}});
    ASSERT_TRUE(composePlainCoreProperties(properties, document));
    EXPECT_EQ(document, CorePropertiesSerializer::serialize(properties));
}

TEST(CorePropertiesComposer, writesWhiteSpaceAndKeywordsAsXercesDoes) {
    const std::pair<std::u16string, bool> texts[] = {{u"", true},    {u" a ", true},     {u"a\n", true},
                                                     {u"\na", true}, {u"\n\nb\t", true}, {u" ", false},
                                                     {u"\t", false}, {u"\n", false}};
    for (const auto& [first, isFirstPlain] : texts)
        for (const auto& [second, isSecondPlain] : texts) {
            CoreProperties properties;
            properties.setCategory(first);
            properties.setKeywords({{first, u"<\"&>"}, {second, u"en"}, {first, u""}});
            properties.setTitle(second);
            properties.setVersion(u"1");
            std::string document;
            ASSERT_EQ(composePlainCoreProperties(properties, document), isFirstPlain && isSecondPlain);
            if (isFirstPlain && isSecondPlain) {
                EXPECT_EQ(document, CorePropertiesSerializer::serialize(properties));
            }
        }
}

} // namespace
