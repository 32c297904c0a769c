#include "coreproperties/CorePropertiesSerializer.hpp"
#include "coreproperties/CorePropertiesDocument.hpp"
#include "support/Cases.hpp"
#include "support/PackageContent.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
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

const std::string WRITTEN = readCase("core-properties/written.txt");

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

/// All fields, with different values.
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
    EXPECT_EQ(write(everyField()), WRITTEN);
    EXPECT_EQ(write(readDocument(WRITTEN)), WRITTEN);
}

TEST_F(CorePropertiesPart, isAFixedPointAfterTheFirstWrite) {
    forEachCase("core-properties/odd-elements.txt", [this](const std::string& elements) {
        const std::string first = write(read(elements));
        EXPECT_EQ(write(readDocument(first)), first);
    });
}

TEST_F(CorePropertiesPart, whatHasNoTextFormLeavesItsElementOut) {
    CoreProperties properties;
    const std::string nothing = WRITTEN.substr(0, WRITTEN.find(">\n  <")) + "/>\n";
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
    const auto expectTime = [](const CoreProperties::Time& time, const std::string& expected) {
        EXPECT_EQ(time ? opc::toUDEString(opc::convertTimeToString(*time)) : "", expected);
    };
    const auto printed = [this](const std::string& text) {
        return read("<cp:lastPrinted>" + text + "</cp:lastPrinted>").getLastPrinted();
    };
    const auto expectCreatedAndModified = [&](const std::string& text, const std::string& expected) {
        const CoreProperties typed =
            read("<dcterms:created xsi:type='dcterms:W3CDTF'>" + text + "</dcterms:created>" +
                 "<dcterms:modified xsi:type='dcterms:W3CDTF'>" + text + "</dcterms:modified>");
        expectTime(typed.getCreated(), expected);
        expectTime(typed.getModified(), expected);
    };
    forEachCase("core-properties/times.txt", [&](const std::string& text, const std::string& expected) {
        expectCreatedAndModified(text, expected);
        expectTime(printed(text), expected);
    });
    forEachCase("core-properties/dates.txt", [&](const std::string& text, const std::string& expected) {
        expectCreatedAndModified(text, expected);
        EXPECT_THROW(printed(text), InvalidPartContent);
    });
}

TEST_F(CorePropertiesPart, rulesOfTheStandardAreCheckedInOrder) {
    forEachCase("core-properties/rules.txt", [this](const std::string& message, const std::string& elements,
                                                    const std::string& attributes) {
        CoreProperties properties = everyField();
        EXPECT_RAISES(InvalidPartContent, message,
                      readInto(properties, corePropertiesDocument(elements, attributes)));
        EXPECT_TRUE(properties.isEmpty());
    });
    const std::string mc = "xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006'";
    EXPECT_EQ(read("<dc:title " + mc + ">t</dc:title>").getTitle().value(), u"t")
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
