#include "coreproperties/CorePropertiesScanner.hpp"
#include "coreproperties/CorePropertiesComposer.hpp"
#include "coreproperties/CorePropertiesDocument.hpp"
#include "support/Cases.hpp"
#include "support/CorePropertiesComparison.hpp"
#include "support/MutatedDocument.hpp"
#include "support/Texts.hpp"

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string DOCUMENT = corePropertiesDocument(readCase("core-properties/plain-elements.txt"),
                                                    "xmlns:dcmitype='http://purl.org/dc/dcmitype/'");

/// The same, with the core properties' own names in the default namespace.
std::string withoutPrefix(const std::string& document) {
    return replacedAll(replaced(document, "xmlns:cp", "xmlns"), "cp:", "");
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
    forEachCase("core-properties/not-plain.txt", [](const std::string& from, const std::string& to) {
        EXPECT_FALSE(CorePropertiesComparison::isRecognised(toBytes(replaced(DOCUMENT, from, to))));
    });
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
