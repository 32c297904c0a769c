#include "xml/PlainDocument.hpp"
#include "support/MutatedDocument.hpp"
#include "support/PackageContent.hpp"
#include "support/ScannerComparison.hpp"
#include "support/Texts.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>

#include <gtest/gtest.h>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string RELATIONSHIPS =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<!---->"
    "<Relationships xmlns:a='urn' xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<!-- - > -->\n"
    "<Relationship Id=\"rId1\" Type=\"http://schemas.example.org/a/2006/main\" "
    "Target=\"word/document.xml\"/>\n"
    "<Relationship Target='https://example.com/x_y~z/' TargetMode='External' Type='a/b' "
    "Id='_2.3-'></Relationship >"
    "<Relationship Id=\"r3\" Type=\"http://a.b/c\" Target=\"/../a.xml\" TargetMode=\"Internal\" "
    "/><Relationship Id='&#x72;4' Type='urn:a' Target='http://a.b:80/c?d=%20&amp;e=&apos;#f' "
    "TargetMode='&#69;xternal'/><Relationship Id=\"r5\" Type=\"a\" Target=\"mailto:&#xE4;\xC3\xA4\\ a\" "
    "TargetMode=\"External\"/></Relationships>\n<!-- \r\n\t\"' -->";

const std::string CONTENT_TYPES =
    "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8' ?>"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">\n"
    "  <Default Extension=\"rels\" "
    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>\n"
    "  <Default ContentType=\"image/x_y\" Extension=\"P-N~g_\"/>\n"
    "  <Override PartName=\"/word/document.xml\" ContentType=\"a/b.c+d-e\"/></Types>";

TEST(PlainDocument, theUsualFormIsRecognised) {
    for (const auto& [schema, document] : {std::pair(&schemas::RELATIONSHIPS, RELATIONSHIPS),
                                           std::pair(&schemas::CONTENT_TYPES, CONTENT_TYPES)}) {
        ScannerComparison comparison(*schema);
        ScannerComparison::Elements scanned;
        ASSERT_TRUE(comparison.scan(toBytes(document), scanned)) << document;
        EXPECT_EQ(scanned.size(), schema == &schemas::RELATIONSHIPS ? 5U : 3U);
        EXPECT_EQ(comparison.findDifference(toBytes(document)), "");
    }
}

TEST(PlainDocument, everyDoubtIsLeftToTheParser) {
    const std::pair<const char*, std::vector<const char*>> doubts[] = {
        {"encoding=\"UTF-8\"", {"encoding=\"UTF-16\""}},
        {"1.0", {"1.1"}},
        {"yes", {"maybe"}},
        {"?>", {"? >"}},
        {"<Relationship ",
         {"<!-- -- --><Relationship ", "<!-- \xC3\xA4 --><Relationship ", "text<Relationship ",
          "<Relationship Id=\"x\" ", "<r:Relationship ", "<Other ", "<Relationship", "</Rela<Relationship "}},
        {"rId1", {"r&#49d1", "r&#;d1", "r&#xFFFFF;", "r&d;", "r&amp;", "1", "r3", "a:b", "", "r\xC3\xA9"}},
        {"Target=", {"target="}},
        {"word/document.xml",
         {"", "//host/x", "a:b", "a%zz", "\xC3\xA4", "a&#9;b", "a&#10;b", "&#32;a", "a&lt;b"}},
        {"External", {"external"}},
        {"\xC3\xA4", {"\xC3", "&#133;", "&#x1F600;"}},
        {"xmlns:a='urn'",
         {"a='b'", "xmlns:a=''", "xmlns:='b'", "xmlns:xml='http://www.w3.org/XML/1998/namespace'",
          "xmlns:a='http://www.w3.org/XML/1998/namespace'", "xmlns:a='http://www.w3.org/2000/xmlns/'",
          "xmlns:xmlns='b'", "xmlns:a:b='c'"}},
        {"</Relationships>\n", {"</Relationships>\n<a/>", "", "</Relationships><!-- "}},
        {"<?xml", {" <?xml"}},
        {" Type=", {"Type="}},
        {"package/2006", {"package/2007"}},
    };
    const ScannerComparison comparison(schemas::RELATIONSHIPS);
    ScannerComparison::Elements elements;
    for (const auto& [from, replacements] : doubts)
        for (const char* to : replacements)
            EXPECT_FALSE(comparison.scan(toBytes(replaced(RELATIONSHIPS, from, to)), elements))
                << from << " -> " << to;
    EXPECT_FALSE(comparison.scan({}, elements));
    std::string comments;
    for (int i = 0; i < 100; ++i)
        comments += "<!---->";
    EXPECT_FALSE(comparison.scan(toBytes(replaced(RELATIONSHIPS, "<!---->", comments)), elements));
}

TEST(PlainDocument, whatIsRecognisedTheParserFindsToo) {
    std::mt19937 random(20240229);
    for (const auto& [schema, original] : {std::pair(&schemas::RELATIONSHIPS, RELATIONSHIPS),
                                           std::pair(&schemas::CONTENT_TYPES, CONTENT_TYPES)}) {
        ScannerComparison comparison(*schema);
        int recognised = 0;
        for (int i = 0; i < 20000; ++i) {
            const Bytes document = mutate(toBytes(original), random);
            ScannerComparison::Elements scanned;
            recognised += comparison.scan(document, scanned) ? 1 : 0;
            ASSERT_EQ(comparison.findDifference(document), "") << toText(document);
        }
        EXPECT_GT(recognised, 500);
    }
}

TEST(ReplayedStream, givesWhatWasReadAheadAndThenTheRest) {
    const Bytes document = toBytes(std::string(10000, 'x') + "end");
    opc::ByteArrayInAdaptor source(document);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 5000));
    Bytes all;
    unsigned char block[777];
    while (!stream.isDone()) {
        const auto got = stream.read(block, sizeof block);
        all.insert(all.end(), block, block + got);
    }
    EXPECT_EQ(all, document);
}

/// Each second read gives nothing. One fails, and then it says that it is done.
class Stuttering : public opc::InputStream {
public:
    explicit Stuttering(int most) : goodReads(most) {}
    void open() override {}
    std::uint64_t read(unsigned char* buffer, std::uint64_t) override {
        if (++reads > goodReads)
            throw opc::Exception("broken");
        *buffer = 'x';
        return reads % 2;
    }
    bool isDone() const override { return reads > goodReads; }
    void close() override {}

    int reads = 0;

private:
    int goodReads;
};

TEST(ReplayedStream, givesNothingWhereTheStreamGaveNothing) {
    Stuttering source(100);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 100));
    unsigned char block[10];
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(stream.read(block, 10), i % 2 == 0 ? 1U : 0U) << i;
}

TEST(ReplayedStream, keepsAFailureForWhoeverReadsThatFar) {
    Stuttering source(1);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 100));
    unsigned char block[10];
    EXPECT_EQ(stream.read(block, 10), 1U);
    EXPECT_FALSE(stream.isDone());
    EXPECT_THROW(stream.read(block, 10), opc::Exception);
    EXPECT_EQ(source.reads, 2) << "what has failed isn't asked again";
}

} // namespace
