#include "xml/PlainDocument.hpp"
#include "package/ContentTypesScanner.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "support/PackageContent.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <gtest/gtest.h>

#include <random>

#include <xercesc/dom/DOM.hpp>

namespace {

using namespace opc::model;
using opc::test::Bytes;
using opc::test::toBytes;

using Attributes = std::vector<std::pair<std::string, std::string>>;
using Elements = std::vector<std::pair<std::string, Attributes>>;

/// What the validating parser finds in a document: its children with their attributes, in the order of names.
class ParserView {
public:
    explicit ParserView(const EmbeddedSchema& schema) { loadGrammarUnchecked(parser.get(), schema); }

    /// @return whether the document is valid
    bool read(const Bytes& document, Elements& elements) {
        elements.clear();
        opc::ByteArrayInAdaptor stream(document);
        try {
            const auto* root = XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {})
                                   ->getDocumentElement();
            for (const auto* child = root->getFirstElementChild(); child != nullptr;
                 child = child->getNextElementSibling()) {
                auto& [name, attributes] = elements.emplace_back();
                name = opc::toUDEString(child->getTagName());
                const auto* map = child->getAttributes();
                for (XMLSize_t i = 0; i < map->getLength(); ++i)
                    attributes.emplace_back(opc::toUDEString(map->item(i)->getNodeName()),
                                            opc::toUDEString(map->item(i)->getNodeValue()));
                std::sort(attributes.begin(), attributes.end());
            }
        } catch (const InvalidXMLDocument&) {
            return false;
        }
        parser->resetDocumentPool();
        return true;
    }

private:
    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser = XercesHelper::createParser();
};

std::string text(std::string_view view) {
    return std::string(view);
}

bool scan(const EmbeddedSchema& schema, const Bytes& document, Elements& elements) {
    elements.clear();
    if (&schema == &schemas::RELATIONSHIPS) {
        std::vector<ScannedRelationship> found;
        if (!scanRelationships(document, found))
            return false;
        for (const ScannedRelationship& entry : found) {
            Attributes attributes{{"Id", text(entry.id)}, {"Target", text(entry.target)}};
            if (!entry.targetMode.empty())
                attributes.emplace_back("TargetMode", text(entry.targetMode));
            attributes.emplace_back("Type", text(entry.type));
            elements.emplace_back("Relationship", attributes);
        }
        return true;
    }
    ScannedContentTypes found;
    if (!scanContentTypes(document, found))
        return false;
    for (const ScannedContentType& entry : found.defaults)
        elements.emplace_back(
            "Default", Attributes{{"ContentType", text(entry.contentType)}, {"Extension", text(entry.key)}});
    for (const ScannedContentType& entry : found.overrides)
        elements.emplace_back(
            "Override", Attributes{{"ContentType", text(entry.contentType)}, {"PartName", text(entry.key)}});
    return true;
}

const std::string RELATIONSHIPS =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<Relationship Id=\"rId1\" Type=\"http://schemas.example.org/a/2006/main\" "
    "Target=\"word/document.xml\"/>\n"
    "<Relationship Target='https://example.com/x_y~z/' TargetMode='External' Type='a/b' "
    "Id='_2.3-'></Relationship >"
    "<Relationship Id=\"r3\" Type=\"http://a.b/c\" Target=\"/../a.xml\" TargetMode=\"Internal\" "
    "/></Relationships>\n";

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
        Elements scanned;
        Elements parsed;
        ParserView parser(*schema);
        ASSERT_TRUE(scan(*schema, toBytes(document), scanned)) << document;
        ASSERT_TRUE(parser.read(toBytes(document), parsed));
        EXPECT_EQ(scanned, parsed);
        EXPECT_EQ(scanned.size(), 3U);
    }
}

TEST(PlainDocument, everyDoubtIsLeftToTheParser) {
    const auto replaced = [](std::string from, std::string to) {
        std::string document = RELATIONSHIPS;
        return toBytes(document.replace(document.find(from), from.size(), to));
    };
    const std::pair<const char*, const char*> doubts[] = {
        {"encoding=\"UTF-8\"", "encoding=\"UTF-16\""},
        {"1.0", "1.1"},
        {"yes", "maybe"},
        {"?>", "? >"},
        {"<Relationship ", "<!-- --><Relationship "},
        {"<Relationship ", "text<Relationship "},
        {"<Relationship ", "<Relationship Id=\"x\" "},
        {"<Relationship ", "<r:Relationship "},
        {"<Relationship ", "<Other "},
        {"<Relationship ", "<Relationship"},
        {"rId1", "r&#73;d1"},
        {"rId1", "1"},
        {"rId1", "r3"},
        {"rId1", "a:b"},
        {"rId1", ""},
        {"rId1", "r\xC3\xA9"},
        {"Target=", "target="},
        {"word/document.xml", ""},
        {"word/document.xml", "//host/x"},
        {"word/document.xml", "a b"},
        {"word/document.xml", "a:b"},
        {"word/document.xml", "a%zz"},
        {"word/document.xml", "http://-a/"},
        {"word/document.xml", "http://1.2/"},
        {"word/document.xml", "http:///a"},
        {"word/document.xml", "#a"},
        {"External", "external"},
        {"relationships\">", "relationships\" xmlns:a=\"b\">"},
        {"</Relationships>\n", "</Relationships>\n<a/>"},
        {"</Relationships>\n", ""},
        {"<?xml", " <?xml"},
        {"<Relationship ", "</Rela<Relationship "},
        {" Type=", "Type="},
        {"package/2006", "package/2007"},
    };
    Elements elements;
    for (const auto& [from, to] : doubts)
        EXPECT_FALSE(scan(schemas::RELATIONSHIPS, replaced(from, to), elements)) << from << " -> " << to;
    EXPECT_FALSE(scan(schemas::RELATIONSHIPS, {}, elements));
}

/// A document changed in one to three places: bytes replaced, dropped, repeated, or taken from elsewhere in
/// it.
Bytes mutate(Bytes document, std::mt19937& random) {
    static const std::string BYTES = "<>/=\"' \n\t&;:%#?.-_~aZ0xml!\x01\x80\xC3";
    const auto below = [&random](std::size_t bound) { return bound == 0 ? 0 : random() % bound; };
    for (std::size_t changes = 1 + below(3); changes > 0 && !document.empty(); --changes) {
        const std::size_t at = below(document.size());
        const std::size_t length = std::min(1 + below(12), document.size() - at);
        const auto begin = document.begin() + static_cast<std::ptrdiff_t>(at);
        const Bytes piece(begin, begin + static_cast<std::ptrdiff_t>(length));
        switch (below(4)) {
        case 0:
            *begin = static_cast<unsigned char>(BYTES[below(BYTES.size())]);
            break;
        case 1:
            document.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
            break;
        case 2:
            document.insert(begin, piece.begin(), piece.end());
            break;
        default:
            document.insert(document.begin() + static_cast<std::ptrdiff_t>(below(document.size())),
                            piece.begin(), piece.end());
        }
    }
    return document;
}

TEST(PlainDocument, whatIsRecognisedTheParserFindsToo) {
    std::mt19937 random(20240229);
    for (const auto& [schema, original] : {std::pair(&schemas::RELATIONSHIPS, RELATIONSHIPS),
                                           std::pair(&schemas::CONTENT_TYPES, CONTENT_TYPES)}) {
        ParserView parser(*schema);
        int recognised = 0;
        for (int i = 0; i < 20000; ++i) {
            const Bytes document = mutate(toBytes(original), random);
            Elements scanned;
            if (!scan(*schema, document, scanned))
                continue;
            ++recognised;
            Elements parsed;
            ASSERT_TRUE(parser.read(document, parsed)) << opc::test::toText(document);
            std::stable_sort(parsed.begin(), parsed.end(),
                             [](const auto& left, const auto& right) { return left.first < right.first; });
            ASSERT_EQ(scanned, parsed) << opc::test::toText(document);
        }
        EXPECT_GT(recognised, 500);
    }
}

TEST(ReplayedStream, givesWhatWasReadAheadAndThenTheRest) {
    const Bytes document = toBytes(std::string(10000, 'x') + "end");
    opc::ByteArrayInAdaptor source(document);
    ReplayedStream stream(source);
    Bytes ahead;
    EXPECT_FALSE(stream.readAhead(ahead, 5000));
    Bytes all;
    unsigned char block[777];
    while (!stream.isDone()) {
        const auto got = stream.read(block, sizeof block);
        all.insert(all.end(), block, block + got);
    }
    EXPECT_EQ(all, document);
}

TEST(ReplayedStream, keepsAFailureForWhoeverReadsThatFar) {
    class Failing : public opc::InputStream {
    public:
        void open() override {}
        std::uint64_t read(unsigned char* buffer, std::uint64_t) override {
            if (++reads > 1)
                throw opc::Exception("broken");
            *buffer = 'x';
            return 1;
        }
        bool isDone() const override { return false; }
        void close() override {}
        int reads = 0;
    } source;
    ReplayedStream stream(source);
    Bytes ahead;
    EXPECT_FALSE(stream.readAhead(ahead, 100));
    unsigned char buffer[10];
    EXPECT_EQ(stream.read(buffer, 10), 1U);
    EXPECT_FALSE(stream.isDone());
    EXPECT_THROW(stream.read(buffer, 10), opc::Exception);
}

} // namespace
