#include "support/EventComparison.hpp"
#include "support/MutatedDocument.hpp"
#include "support/Outcome.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XmlRules.hpp>

#include <stdexcept>
#include <thread>

namespace {

using namespace opc;
using namespace opc::model;
using namespace opc::test;

const std::string RICH =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!-- c\xC3\xA4 --><?p  i ?>\n"
    "<r xmlns='http://a' xmlns:b='http://b' a='1&amp;2' b:a=\"'\t\r\n&#10;\xF0\x9F\x98\x80\" xml:lang='en'>"
    "t\xC3\xA4\r\nx&lt;&#x41;&#128512;<![CDATA[<&]>]]>]<b:c\n b:d='' ><c xmlns='' xmlns:b='http://c' "
    "b:a='1'/></b:c >"
    "<?q?><!--\r\n-->\xF0\x9F\x98\x80<e/>\r]] ></r>\n<!---->";

TEST(XmlEvents, tellWhatTheDocumentSays) {
    const std::string expected = "version 1.0 declaration utf-8\ncomment  c\xC3\xA4 \ninstruction p|i \n"
                                 "start  {http://a}r 4:24 xmlns:=http://a xmlns:b=http://b  {}a=1&2 b "
                                 "{http://b}a='  \n\xF0\x9F\x98\x80 "
                                 "xml {http://www.w3.org/XML/1998/namespace}lang=en\n"
                                 "text t\xC3\xA4\nx<A\xF0\x9F\x98\x80<&]>]\n"
                                 "start b {http://b}c 6:10 b {http://b}d=\n"
                                 "start  {}c 6:50 xmlns:= xmlns:b=http://c b {http://c}a=1\nend\nend\n"
                                 "instruction q|\ncomment \n\n"
                                 "text \xF0\x9F\x98\x80\n"
                                 "start  {http://a}e 7:10\nend\n"
                                 "text \n]] >\nend\ncomment ";
    for (const std::size_t bytesAtATime : {1U, 3U, 1000U}) {
        EXPECT_EQ(eventsOf(toBytes(RICH), bytesAtATime).whole(), expected);
        EXPECT_EQ(findEventDifference(toBytes(RICH), bytesAtATime), "");
    }
    EXPECT_TRUE(isScanned(toBytes(RICH)));
}

/// Random changes lead out of the usual form at any place.
TEST(XmlEvents, areThoseOfTheParserWhateverTheForm) {
    std::mt19937 random(20261126);
    int scanned = 0;
    for (std::size_t i = 0; i < 4000; ++i) {
        const Bytes document = mutate(toBytes(RICH), random);
        scanned += isScanned(document) ? 1 : 0;
        ASSERT_EQ(findEventDifference(document, 1 + i % 50), "") << toText(document);
        opc::ByteArrayInAdaptor stream(document);
        ASSERT_EQ(outcomeOf([&] { XmlRules::check(document); }), outcomeOf([&] { XmlRules::check(stream); }))
            << toText(document);
    }
    EXPECT_GT(scanned, 200);
}

TEST(XmlEvents, areThoseOfTheParserInDocumentsBeyondOneBuffer) {
    const std::string filler(40000, 'x');
    const std::string whole = "<r a='" + filler + "&amp;" + filler + "'>" + filler + "\xC3\xA4" + filler +
                              "<!--" + filler + "--><![CDATA[" + filler + filler + "]]><b c='" + filler +
                              "' " + std::string(70000, ' ') + "/>" + repeated("<c d='e'>f</c>", 20000) +
                              "</r>" + std::string(70000, '\n');
    EXPECT_TRUE(isScanned(toBytes(whole)));
    EXPECT_EQ(findEventDifference(toBytes(whole), 30011), "");
    EXPECT_EQ(findEventDifference(toBytes(whole + "<r/>")), ""); // fails when all was told
}

TEST(XmlEvents, areThoseOfTheParserForEachDeclaration) {
    const struct {
        std::string declaration;
        bool isUsual;
    } cases[] = {
        {"<?xml version='1.0'?>", true},
        {"<?xml  version = \"1.0\"\tencoding='UTF-8' standalone='no' ?>", true},
        {"<?xml version='1.0' standalone='yes'?>", true},
        {"<?xml version='1.0' standalone='maybe'?>", false},
        {"<?xml version='1.0'encoding='UTF-8'?>", false},
        {"<?xml version='1.0' encoding='UTF-8' encoding='UTF-8'?>", false},
        {"<?xml version='1.0' standalone='yes' encoding='UTF-8'?>", false},
        {"<?xml version='1.0' standalone='yes' standalone='no'?>", false},
        {"<?xml version='1.0' version='1.0'?>", false},
        {"<?xml encoding='UTF-8' version='1.0'?>", false},
        {"<?xml version='1.0' xmlns='UTF-8'?>", false},
        {"<?xml version='1.0' encoding='UTF&#45;8'?>", false},
        {"<?xml version='1.0' encoding='?>'?>", false},
        {"<?xml version='1.0'\n?>", false},
        {"<?xml version='1.1'?>", false},
        {"<?xml ?>", false},
        {"<?xml version='1.0' x?>", false},
    };
    for (const auto& [declaration, isUsual] : cases) {
        const Bytes document = toBytes(declaration + "<a b='c'/>");
        EXPECT_EQ(isScanned(document), isUsual) << declaration;
        EXPECT_EQ(findEventDifference(document), "") << declaration;
    }
}

TEST(XmlEvents, nameWhatIsWrongAndWhere) {
    const std::string deep = repeated("<a>", 1001);
    const std::string documentType = "the document has a document type declaration, which isn't allowed";
    const std::string zero = "the character U+0000 stands in the document ()";
    const struct {
        std::string document, failure;
    } cases[] = {
        {"", "invalid document structure (line 1, column 1)"},
        {"<a>\n<b></a>", "expected end of tag 'b' (line 2, column 6)"},
        {"<a", "unexpected end of input (line 1, column 3)"},
        {"<a><b:c/></a>", "prefix 'b' can not be resolved to namespace URI (line 1, column 10)"},
        {"<a b='' b=''/>", "attribute 'b' is already specified for element 'a' (line 1, column 15)"},
        {"<!-- c -->\n<!DOCTYPE a><a/>", documentType + " (line 2)"},
        {std::string("\xFF\xFE<\0!\0D\0O\0C\0T\0Y\0P\0E\0 \0a\0>\0", 26), documentType + " (line 1)"},
        {std::string("<a/>\0<b/>", 9), zero}, // which ends a text for the parser
        {std::string("<aa>\0</aa>", 10), zero},
        {std::string("\xFF\xFE<\0a\0/\0>\0\0\0b\0", 14), zero},
        {"<a/>\xFF<b/>", "the document ends within a character ()"}, // too short for the parser
        {"<a/><!--\xC3\xA4-->\n\xC3", "the document ends within a character ()"},
        {std::string("\xFF\xFE<\0a\0/\0>\0 ", 11), "the document ends within a character ()"},
        {deep, "XML content can not be nested deeper than 1000 elements (line 1)"},
        {"<a>" + repeated("<!---->", 10001) + "</a>",
         "XML content can not contain more than 10000 comments (line 1)"},
        {"<a b='" + std::string(5U << 20, 'x') + "'/>",
         "XML content can not have tags or comments of more than 4 MiB ()"},
        {"<a/>" + std::string(5U << 20, '\n'),
         "XML content can not have tags or comments of more than 4 MiB ()"},
    };
    for (const auto& [document, failure] : cases) {
        const LoggedEvents read = eventsOf(toBytes(document));
        EXPECT_EQ(read.failure, "opc::model::InvalidXMLDocument: " + failure) << document.substr(0, 100);
        EXPECT_EQ(findEventDifference(toBytes("<a/>")), ""); // nothing is left of a failure
    }
}

/// Throws at one of the calls.
class ThrowingEvents final : public XmlEvents {
public:
    explicit ThrowingEvents(int calls) : calls(calls) {}

    void onDeclaration(std::u16string_view) override { call(); }
    void onStart(const XmlElement&, const XmlPlace&) override { call(); }
    void onEnd() override { call(); }
    void onText(std::u16string_view) override { call(); }

private:
    void call() {
        if (--calls == 0)
            throw std::out_of_range("enough");
    }

    int calls;
};

class FailingStream final : public InputStream {
public:
    void open() override {}
    std::uint64_t read(unsigned char* buffer, std::uint64_t) override {
        if (isFirst)
            *buffer = '<';
        else
            throw std::out_of_range("enough");
        isFirst = false;
        return 1;
    }
    bool isDone() const override { return false; }
    void close() override {}

private:
    bool isFirst = true;
};

TEST(XmlEvents, letExceptionsOfTheCallerPass) {
    for (const std::string document : {"<?xml version='1.0'?><r>t</r>", "<?xml version='1.1'?><r>t</r>"})
        for (int calls = 1; calls <= 4; ++calls) {
            ThrowingEvents events(calls);
            const Bytes bytes = toBytes(document);
            SlowStream stream(bytes, 100);
            EXPECT_RAISES(std::out_of_range, "enough", readXmlDocument(stream, events));
        }
    EventLog log;
    FailingStream failing;
    EXPECT_RAISES(std::out_of_range, "enough", readXmlDocument(failing, log));
    EXPECT_EQ(findEventDifference(toBytes(RICH)), "");
}

TEST(XmlEvents, comeInSeveralThreads) {
    const auto readAll = [] {
        for (int i = 0; i < 200; ++i)
            for (const std::string& document : {RICH, replaced(RICH, "utf-8", "US-ASCII"), RICH + "<r/>"})
                static_cast<void>(eventsOf(toBytes(document)));
    };
    std::thread other(readAll);
    readAll();
    other.join();
    EXPECT_EQ(findEventDifference(toBytes(RICH)), "");
}

} // namespace
