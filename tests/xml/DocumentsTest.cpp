#include "SchemaParser.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "support/Cases.hpp"
#include "support/Throws.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <new>

namespace {

using namespace opc::model;
using namespace opc::test;

const char* const BAD_ENCODING =
    "XML content must be UTF-8 or UTF-16 or empty (i.e., absent XML declaration)";
const char* const DEEP = "XML content can not be nested deeper than 1000 elements";
const char* const MANY_COMMENTS = "XML content can not contain more than 10000 comments";
const char* const MANY_ATTRIBUTES = "XML content can not have more than 1000 attributes on an element";
const char* const OFTEN_MANY = "XML content can not have more than 100 attributes on most of many elements";
const char* const MANY_BELOW = "XML content has too many names below too many elements and namespaces";
const char* const MANY_OPEN = "XML content can not have more than 4000 attributes on nested elements";
const char* const MANY_NAMES = "XML content can not have more than 2000 different names";

/// UTF-16, low byte first.
std::string toUTF16(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text)
        bytes += {static_cast<char>(unit & 0xFFU), static_cast<char>(unit >> 8U)};
    return bytes;
}

std::string swapped(std::string bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

class Reading : public testing::Test {
public:
    /// The text of the root element.
    std::u16string read(opc::InputStream& stream) {
        return textOf(XercesHelper::readDocumentFromStream(parser.get(), stream, false, u"", u""));
    }
    std::u16string read(const std::string& document) {
        const Bytes bytes = toBytes(document);
        opc::ByteArrayInAdaptor stream(bytes);
        return read(stream);
    }
    std::u16string read(const std::u16string& document) {
        return textOf(XercesHelper::readDocumentFromString(parser.get(), document, false, u"", u""));
    }

protected:
    SchemaParser parser;

private:
    static std::u16string textOf(const xercesc::DOMDocument* document) {
        return document->getDocumentElement()->getTextContent();
    }
};

/// Whether a parser or a serialiser still has the error handler of a finished operation.
template <typename Tool>
bool hasErrorHandler(Tool* tool) {
    return tool->getDomConfig()->getParameter(xercesc::XMLUni::fgDOMErrorHandler) != nullptr;
}

TEST_F(Reading, refusesADTDInAnyForm) {
    forEachCase("xml/doctypes.txt", [this](const std::string& declaration) {
        for (const bool validate : {false, true})
            EXPECT_EQ(parser.refusal(declaration + "<a/>", validate),
                      "the document has a document type declaration, which isn't allowed");
    });
}

TEST_F(Reading, takesUTF8AndUTF16Alone) {
    forEachCase("xml/encodings.txt", [this](const std::string& document, const std::string& refusal) {
        if (refusal == "accepted") {
            EXPECT_EQ(read(document), u"\u00E9\U0001F600");
        } else {
            EXPECT_EQ(parser.refusal(document, false).substr(0, refusal.size()), refusal);
        }
    });
    const std::u16string wide = u"<a>\u00E9\U0001F600</a>", mark = u"\uFEFF";
    const std::string declared = toUTF16(mark + u"<?xml version='1.0' encoding='UTF-16'?>" + wide);
    for (const std::string& document : {declared, swapped(declared), toUTF16(mark + wide)})
        EXPECT_EQ(read(document), u"\u00E9\U0001F600") << document;
    EXPECT_EQ(parser.refusal(toUTF16(mark + u"<?xml version='1.0' encoding='UTF-16LE'?><a/>"), false),
              BAD_ENCODING);
}

TEST_F(Reading, takesAStringAsUTF16WhateverItDeclares) {
    for (const std::u16string declaration :
         {u"", u" \n", u"\uFEFF", u"<?xml version='1.0'?>", u"<?xml version='1.0' encoding='UTF-8'?>",
          u"<?xml version='1.0' encoding='UTF-16'?>", u"\uFEFF<?xml version='1.0' encoding='utf-16'?>"})
        EXPECT_EQ(read(declaration + u"<a>\u00E9\U0001F600</a>"), u"\u00E9\U0001F600");
    const std::u16string latin = u"<?xml version='1.0' encoding='ISO-8859-1'?><a/>";
    EXPECT_RAISES(InvalidXMLDocument, BAD_ENCODING, read(latin));
    const std::u16string refused[] = {u"",
                                      u" <?xml version='1.0'?><a/>",
                                      u"<a>\xD800</a>",
                                      u"<a>\xDC00</a>",
                                      u"<a>\uFFFE</a>",
                                      u"<a>&#1;</a>",
                                      {u"<a>\0</a>", 8},
                                      {u"<a/>\0<b/>", 9}};
    for (const std::u16string& document : refused)
        EXPECT_THROW(read(document), InvalidXMLDocument);
}

std::string nested(std::size_t depth, const std::string& open = "<a>") {
    return repeated(open, depth) + repeated("</a>", depth);
}

std::string withAttributes(std::size_t count, const std::string& prefix) {
    std::string element = "<a";
    for (std::size_t i = 0; i < count; ++i)
        element += " " + prefix + std::to_string(i) + "='u'";
    return element;
}

/// Elements that each have a different name, attribute name or namespace.
std::string manyNames(std::size_t count, const std::string& before, const std::string& after) {
    std::string document = "<a>";
    for (std::size_t i = 0; i < count; ++i)
        document += "<" + before + std::to_string(i) + after + "/>";
    return document + "</a>";
}

/// An element whose attributes fall together in the hash table of the parser.
std::string withCollidingAttributes(unsigned bits) {
    std::string element = "<a";
    for (unsigned number = 0; number >> bits == 0; ++number) {
        element += " x";
        for (unsigned bit = 0; bit < bits; ++bit)
            element += (number >> bit) % 2 == 0 ? "bA" : "ag";
        element += "=''";
    }
    return element;
}

TEST_F(Reading, countsTheAttributesOfATagBeforeItReadsThem) {
    const std::string many = withAttributes(2000, "b") + "/>";
    const std::pair<std::string, bool> cases[] = {
        // and whether it is refused
        {"<!--" + many + "--->-->", true}, // as it is malformed
        {"<!--" + many + "-- >", true},
        {"<r><!--" + many + "--><![CDATA[" + many + "]]]]>" + repeated("a='", 2000) + "<?p " + many +
             "\?\?></r>",
         false},
        {"<r>" + repeated("<a b = 'c' d\n=\n'e'/>", 2000) + "</r>", false},
        {"<r a='" + repeated("b=\"c\" ", 2000) + "' d=\"" + repeated("e='f'>", 2000) + "\"/>", false},
        {"<r><!-- ' -->" + many, true},
        {"<r><!--->'--><![CDATA[']]>]]&gt;'" + many, true},
        {"<r><![CDATA[<!--']]>" + many, true},
        {"<r><?p '<!--?>" + many, true},
        {"<r>'<b c=\"'\" d='\"'/>'" + many, true},
        {"<r>\r\n" + many, true},
        {withCollidingAttributes(15) + "/>", true},
    };
    const std::clock_t start = std::clock();
    for (const auto& [document, isRefused] : cases) {
        const std::string low = "\xFF\xFE" + toUTF16(std::u16string(document.begin(), document.end()));
        for (const std::string& one : {document, low, swapped(low)}) {
            const std::string refusal = parser.refusal(one, false);
            EXPECT_EQ(refusal.empty(), !isRefused) << document.substr(0, 40) << refusal;
        }
    }
    EXPECT_LT(std::clock() - start, 10 * CLOCKS_PER_SEC);
}

TEST_F(Reading, stopsDocumentsThatAreBuiltToExhaustIt) {
    const std::string hundred = withAttributes(100, "b") + ">";
    const std::pair<std::string, const char*> cases[] = {
        {nested(1000), ""},
        {nested(1001), DEEP},
        {repeated("<a>", 999) + "<b/><b/>" + repeated("</a>", 999), ""},
        {repeated("<a>", 1000) + "<b/>" + repeated("</a>", 1000), DEEP},
        {repeated("<a>", 2000000), DEEP},
        {"<a>" + repeated("<b c=''/><d e=''><f/></d>", 5000) + "</a>", ""},
        {"<!--c-->" + nested(1, "<a>" + repeated("<!--c-->", 9999)), ""},
        {"<!--c-->" + nested(1, "<a>" + repeated("<!--c-->", 9999)) + "<!--c-->", MANY_COMMENTS},
        {"<a>" + repeated("<!---->", 1000000), MANY_COMMENTS},
        {withAttributes(1000, "b") + "/>", ""},
        {withAttributes(1001, "b") + "/>", MANY_ATTRIBUTES},
        {withAttributes(200000, "b") + "/>", MANY_ATTRIBUTES},
        {withAttributes(200000, "xmlns:b") + "/>", MANY_ATTRIBUTES},
        {"<a>" + repeated(hundred + "</a>", 100) + "</a>", ""},
        {"<a>" + repeated(withAttributes(150, "name") + "/>", 4000) + "</a>", ""},
        {"<a>" + repeated(withAttributes(1000, "b") + "/>", 20) + "</a>", ""},
        {"<a>" + repeated(withAttributes(1000, "b") + "/>", 24) + "</a>", OFTEN_MANY},
        {nested(40, hundred), ""},
        {nested(41, hundred), MANY_OPEN},
        {nested(1000, "<a b='' c='' d='' e=''>"), ""},
        {manyNames(2000, "b", ""), ""},
        {manyNames(200000, "b", ""), MANY_NAMES},
        {manyNames(200000, "a b", "=''"), MANY_NAMES},
        {"<a>" + repeated("<b c='' d=''/>", 30000) + "</a>", ""},
    };
    const std::clock_t start = std::clock(); // of the processor: other work on the machine does not count
    for (const bool namespaces : {true, false}) { // Xerces reports empty elements in two ways
        parser.get()->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMNamespaces, namespaces);
        for (const auto& [document, refusal] : cases)
            EXPECT_EQ(parser.refusal(document, false), refusal) << document.substr(0, 40);
    }
    parser.get()->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMNamespaces, true);
    EXPECT_EQ(parser.refusal(manyNames(200000, "b xmlns='u:", "'"), false),
              "XML content can not have more than 2000 namespaces");
    const std::pair<std::string, const char*> deepOnes[] = {
        {repeated(withAttributes(50, "xmlns:b") + ">", 39) + repeated("<c/>", 600000), MANY_BELOW},
        {repeated("<a>", 900) + repeated("<b/>", 100000), MANY_BELOW},
        {repeated("<a>", 900) + repeated("<b xml:c='' xml:d='' xml:e=''/>", 10000), MANY_BELOW},
        {repeated("<a>", 60) + repeated("<b c='' xml:d=''/>", 400000) + repeated("</a>", 60), ""},
    };
    for (const auto& [document, refusal] : deepOnes)
        EXPECT_EQ(parser.refusal(document, false), refusal) << document.substr(0, 40);
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
}

TEST_F(Reading, countsAnewForEachDocument) {
    for (int i = 0; i < 3000; ++i)
        EXPECT_EQ(parser.refusal("<a xmlns='u:" + std::to_string(i) + "'/>", false), "");
    EXPECT_NE(parser.refusal(manyNames(200000, "b xmlns='u:", "'"), false), "");
    EXPECT_EQ(parser.refusal("<a xmlns='urn:new'/>", false), "");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(parser.refusal("<a>" + repeated("<!--c-->", 6000) + "</a>", false), "");
        EXPECT_EQ(parser.refusal(manyNames(1500, "b", ""), false), "");
    }
}

constexpr char RELATIONSHIPS[] =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>";

/// A relationships part with these IDs, in a plain form.
std::string withIDs(const std::vector<std::string>& ids) {
    std::string document = RELATIONSHIPS;
    for (const std::string& id : ids)
        document += "<Relationship Target='x' Type='t' Id='" + id + "'/>";
    return document + "</Relationships>";
}

/// The first IDs that belong to the first bucket of a table of that size.
std::vector<std::string> inOneBucket(std::size_t count, std::size_t size) {
    std::vector<std::string> ids;
    for (std::size_t number = 0; ids.size() < count; ++number) {
        const std::string id = "a" + std::to_string(number);
        if (xercesc::XMLString::hash(id.c_str(), size) == 0)
            ids.push_back(id);
    }
    return ids;
}

/// IDs with the same hash value.
std::vector<std::string> alike(std::size_t count) {
    std::vector<std::string> ids(count, "a");
    for (std::size_t i = 0; i < count; ++i)
        for (unsigned bit = 0; bit < 16; ++bit)
            ids[i] += (i >> bit & 1) != 0 ? "Az" : "BT";
    return ids;
}

std::vector<std::string> numbered(std::size_t count, const char* prefix) {
    std::vector<std::string> ids;
    for (std::size_t i = 0; i < count; ++i)
        ids.push_back(prefix + std::to_string(i));
    return ids;
}

// Scanning has the same limit as parsing.
TEST_F(Reading, stopsIDsThatFallTogether) {
    const std::pair<std::vector<std::string>, bool> cases[] = {
        {alike(1000), true},
        {alike(1001), false},
        {alike(65536), false},
        {inOneBucket(1500, 3519), false}, // the size of the table for 1320 to 2639 IDs
        {numbered(100000, "rId"), true},
        {inOneBucket(1500, 3519), false}, // independent of earlier documents
        {numbered(20000, "R000000"), true},
    };
    SchemaParser relationships{&schemas::RELATIONSHIPS};
    const std::clock_t start = std::clock();
    for (const auto& [ids, isTaken] : cases) {
        const std::string document = withIDs(ids);
        EXPECT_EQ(relationships.refusal(document, true),
                  isTaken ? "" : "XML content can not have more than 1000 colliding IDs")
            << ids.front() << ' ' << ids.size();
        std::vector<ScannedRelationship> found;
        PlainTexts texts;
        EXPECT_EQ(scanRelationships(document, found, texts), isTaken) << ids.front() << ' ' << ids.size();
    }
    EXPECT_LT(std::clock() - start, 8 * CLOCKS_PER_SEC);
}

struct FreshReading : Reading {
    void TestBody() override {}
};

// The same bytes give the same result, whatever the parser has read before.
TEST_F(Reading, startsAfreshWithEachDocument) {
    const std::string before[] = {
        "<?xml version='1.1'?><a>&#1;</a>",
        "<?xml version='1.1' standalone='yes'?><a",
        manyNames(1900, "b xmlns='u:", "'"),
        "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='u:1 x'/>",
        "<!DOCTYPE a [<!ENTITY e 'x'>]><a/>",
    };
    const std::string documents[] = {
        "<a>&#1;</a>", "<a>\xC2\x85|\xE2\x80\xA8|\xC2\x80</a>", "<a\xC2\x85/>",
        "<a>&e;</a>",  "<?xml version='1.0'?><a>\xC2\x85</a>",  "<?xml version='1.1'?><a>\xC2\x85&#1;</a>"};
    for (const std::string& document : documents) {
        const auto outcome = [&document](Reading& reading) {
            std::u16string text;
            const std::string failure = outcomeOf([&] { text = reading.read(document); });
            return failure + opc::toUDEString(text);
        };
        FreshReading fresh;
        const std::string expected = outcome(fresh);
        for (const std::string& read : before) {
            parser.refusal(read, false);
            EXPECT_EQ(outcome(*this), expected) << document << " behind " << read.substr(0, 60);
        }
    }
}

/// A bad stream: it gives few bytes at once, claims more than it was asked for, or fails.
class FaultyInput : public opc::InputStream {
public:
    explicit FaultyInput(const std::string& text) : bytes(text) {}

    std::size_t piece = 1;       ///< most bytes given at once
    bool boasts = false;         ///< claims to have read more than the buffer can hold
    std::size_t failingRead = 0; ///< the read that fails, from 1
    std::function<void()> fail;

    void open() override {}
    void close() override {}
    bool isDone() const override { return position == bytes.size(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        ++reads;
        EXPECT_TRUE(failingRead == 0 || reads <= failingRead) << "read again after a failure";
        if (reads == failingRead)
            fail();
        const std::size_t taken = std::min({piece, static_cast<std::size_t>(count), bytes.size() - position});
        std::memcpy(buffer, bytes.data() + position, taken);
        position += taken;
        return boasts && taken == count ? count + 1000 : taken;
    }

private:
    std::string bytes;
    std::size_t position = 0;
    std::size_t reads = 0;
};

TEST_F(Reading, worksOnStreamsThatGiveByteByByteOrBoast) {
    const std::string text = repeated("text ", 100000);
    for (const bool boasts : {false, true}) {
        FaultyInput stream("<a>" + text + "</a>");
        stream.piece = boasts ? text.size() : 1;
        stream.boasts = boasts;
        EXPECT_TRUE(read(stream) == opc::toString(text, true));
        EXPECT_TRUE(stream.isDone());
    }
}

/// A failure outside all families of exceptions.
struct Foreign {};

TEST_F(Reading, passesExceptionsOfTheStreamAndStaysUsable) {
    const std::string text = "<?xml version='1.0'?><a>" + repeated("<b c='d'>text</b>", 50000) + "</a>";
    for (const std::size_t failingRead : {1U, 2U, 5U}) {
        const auto readFailingWith = [&](std::function<void()> fail) {
            FaultyInput stream(text);
            stream.piece = 48000;
            stream.failingRead = failingRead;
            stream.fail = std::move(fail);
            read(stream);
        };
        EXPECT_RAISES(opc::Exception, "physical", readFailingWith([] { throw opc::Exception("physical"); }));
        EXPECT_EQ(parser.refusal("<a/>", false), "");
        EXPECT_THROW(readFailingWith([] { throw std::bad_alloc(); }), std::bad_alloc);
        EXPECT_EQ(parser.refusal("<a/>", false), "");
        EXPECT_THROW(readFailingWith([] { throw Foreign(); }), Foreign);
        EXPECT_FALSE(hasErrorHandler(parser.get()));
        EXPECT_EQ(parser.refusal("<a/>", false), "");
        EXPECT_EQ(parser.refusal(nested(1001), false), DEEP);
    }
}

TEST(ReadingWithGrammar, worksAfterEachKindOfFailure) {
    SchemaParser parser({&schemas::RELATIONSHIPS});
    const std::string head = RELATIONSHIPS;
    const std::string good = head + "<Relationship Id='a' Type='t' Target='a'/></Relationships>";
    const auto check = [&](const std::string& bad) {
        EXPECT_NE(parser.refusal(bad), "");
        EXPECT_FALSE(hasErrorHandler(parser.get()));
        EXPECT_EQ(parser.refusal(good), "");
    };
    forEachCase("xml/refused.txt", check);
    check(head + nested(2000));
    check(head + repeated("<!---->", 10001));
}

TEST(ReadingWithGrammar, validatesOnceToldTo) {
    SchemaParser parser({&schemas::RELATIONSHIPS});
    EXPECT_EQ(parser.refusal("<a/>", false), "");
    EXPECT_NE(parser.refusal("<a/>", true), "");
    EXPECT_NE(parser.refusal("<a/>", false), "");
}

TEST(ReadingWithGrammar, keepsAllThatADocumentHoldsAndNormalisesValues) {
    SchemaParser parser({&schemas::RELATIONSHIPS});
    const auto writer = XercesHelper::createWriter();
    const std::string head = "<?xml version=\"1.1\" encoding=\"UTF-16\" standalone=\"yes\" ?><?p before?>"
                             "<!--comment--><Relationships "
                             "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">\n  ";
    const std::string tail = "a<!--c--><![CDATA[<b>]]> <?p q?></Relationship>\n</Relationships><!--after-->";
    const std::string given = head + "<Relationship Id=\" a \" Target=\"\tx  y\n\" Type=\"t\">" + tail;
    const std::string expected = head + "<Relationship Id=\"a\" Target=\"x y\" Type=\"t\">" + tail;
    const auto* document = XercesHelper::readDocumentFromString(
        parser.get(), std::u16string(given.begin(), given.end()), true, u"", u"");
    std::u16string written;
    XercesHelper::writeDocumentToString(writer.get(), document, written, XmlDeclaration::Include);
    EXPECT_EQ(written, std::u16string(expected.begin(), expected.end()));
}

/// Counts the calls. Fails, or says that it is done, when it is told to.
class FaultyOutput : public opc::OutputStream {
public:
    std::string bytes;
    std::size_t limit = std::string::npos; ///< it is done after that many bytes
    bool fails = false;
    int flushes = 0;

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        if (fails)
            throw opc::Exception("disk full");
        EXPECT_FALSE(isDone());
        bytes.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count));
        return count;
    }
    bool isDone() const override { return bytes.size() >= limit; }
    void flush() override { ++flushes; }
    void close() override { ADD_FAILURE() << "closed"; }
};

class Writing : public testing::Test {
protected:
    void writeTo(FaultyOutput& stream) {
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    }
    std::string write() {
        FaultyOutput stream;
        writeTo(stream);
        EXPECT_EQ(stream.flushes, 1);
        return stream.bytes;
    }
    void writeTo(std::u16string& text, XmlDeclaration declaration = XmlDeclaration::Include) {
        XercesHelper::writeDocumentToString(writer.get(), document.get(), text, declaration);
    }

    XercesGuard guard;
    std::unique_ptr<xercesc::DOMDocument, XercesDeleter> document = XercesHelper::createDocument();
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer = XercesHelper::createWriter();
    xercesc::DOMElement* root = XercesHelper::appendElement(document.get(), XercesString(u"a"));
};

TEST_F(Writing, givesBytesInUTF8AndTextInUTF16) {
    XercesHelper::setElementText(root, u"\u00E9\U0001F600<&>");
    EXPECT_EQ(write(), "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"
                       "<a>\xC3\xA9\xF0\x9F\x98\x80&lt;&amp;&gt;</a>");
    const std::u16string element = u"<a>\u00E9\U0001F600&lt;&amp;&gt;</a>";
    std::u16string text = u"before";
    writeTo(text);
    EXPECT_EQ(text, u"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"no\" ?>" + element);
    writeTo(text, XmlDeclaration::Omit);
    EXPECT_EQ(text, element);
    writeTo(text);
    EXPECT_EQ(text, element) << "a serialiser that was told Omit goes on omitting";
}

TEST_F(Writing, prettyPrintsWithAWriterForIt) {
    writer = XercesHelper::createPrettyPrintingWriter();
    document->setXmlStandalone(true);
    XercesHelper::appendElement(root, XercesString(u"b"));
    EXPECT_EQ(write(), "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<a>\n  <b/>\n</a>\n");
}

TEST_F(Writing, refusesADoctype) {
    document->insertBefore(document->createDocumentType(u"a"), root);
    EXPECT_RAISES(InvalidXMLDocument, "XML content can not contain a DTD", write());
}

TEST_F(Writing, sendsNothingOfADocumentThatXMLCannotHold) {
    for (const char16_t* bad : {u"\u0001", u"\uFFFE", u"\xD800", u"a\xDC00"}) {
        XercesHelper::setElementText(root, bad);
        FaultyOutput stream;
        EXPECT_THROW(writeTo(stream), InvalidXMLDocument);
        EXPECT_FALSE(hasErrorHandler(writer.get())) << "it would be one that is gone";
        EXPECT_EQ(stream.bytes, "");
        std::u16string text = u"before";
        EXPECT_THROW(writeTo(text), InvalidXMLDocument);
        EXPECT_EQ(text, u"before");
    }
}

TEST_F(Writing, handsOnAllBytesInOrderUntilTheStreamIsDone) {
    std::u16string text;
    for (char16_t i = 0; i < 65000; ++i)
        text += std::u16string(1, static_cast<char16_t>(u'a' + i % 26)) + (i % 7 ? u"" : u"\u00E9");
    XercesHelper::setElementText(root, text);
    const std::string all = write();
    EXPECT_NE(all.find("<a>" + opc::toUDEString(text) + "</a>"), std::string::npos);
    for (const std::size_t limit : {0U, 10U}) {
        FaultyOutput limited;
        limited.limit = limit;
        EXPECT_NO_THROW(writeTo(limited));
        EXPECT_EQ(limited.bytes, all.substr(0, limited.bytes.size()));
    }
    FaultyOutput broken;
    broken.fails = true;
    EXPECT_RAISES(opc::Exception, "disk full", writeTo(broken));
    EXPECT_EQ(write(), all);
}

} // namespace
