#include "SchemaParser.hpp"
#include "support/Cases.hpp"
#include "support/ShellCommand.hpp"
#include "support/TemporaryFolder.hpp"

#include <unistd.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

using namespace opc::model;
using namespace opc::test;
namespace fs = std::filesystem;

class OutsideAccess : public testing::Test {
protected:
    OutsideAccess() {
        const std::string schema =
            "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:s'>"
            "<xs:element name='a' type='xs:integer'/></xs:schema>";
        std::ofstream(folder / "s.xsd") << schema;
        std::ofstream(folder / "n.xsd") << replaced(schema, " targetNamespace='urn:s'", "");
    }

    TemporaryFolder folder;
};

constexpr char BEGIN[] = "/reading-begins";
constexpr char END[] = "/reading-ends";

/// A system call without effect that a trace shows.
void mark(const char* place) {
    access(place, F_OK);
}

const std::string XSI = "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' ";

/// Between two marks for each reader.
void readHostileDocuments(const TemporaryFolder& folder) {
    const struct {
        std::initializer_list<const EmbeddedSchema*> schemas;
        std::string root;
    } readers[] = {
        {{&schemas::CONTENT_TYPES},
         "Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'"},
        {{&schemas::RELATIONSHIPS},
         "Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'"},
        {{&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE, &schemas::DCMI_TERMS,
          &schemas::CORE_PROPERTIES},
         "coreProperties xmlns='http://schemas.openxmlformats.org/package/2006/metadata/core-properties'"},
        {{&schemas::PACKAGE_SIGNATURE, &schemas::XML_SIGNATURE},
         "Object xmlns='http://www.w3.org/2000/09/xmldsig#'"},
    };
    const std::string places[] = {(folder / "s.xsd").string(), "file://" + (folder / "s.xsd").string(),
                                  fs::relative(folder / "n.xsd").string(), "http://127.0.0.1:9/s.xsd"};
    const auto hostile = readCases("xml/outside-access.txt", 1);
    for (const auto& reader : readers) {
        SchemaParser parser(reader.schemas);
        mark(BEGIN);
        for (const FileCase& each : hostile)
            for (const std::string& place : places) {
                const std::string document =
                    replacedAll(replacedAll(each.columns[0], "%", place), "<@", "<" + reader.root);
                parser.refusal(replacedAll(document, "@", reader.root.substr(0, reader.root.find(' '))),
                               true);
            }
        mark(END);
    }
}

/// In a trace of system calls, no call between the marks names a file or uses the network, whatever a document asks
/// for.
TEST_F(OutsideAccess, isNeverGivenToADocument) {
    if (std::getenv("OPCMODEL_TRACED")) {
        readHostileDocuments(folder);
        return;
    }
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    const auto outcome = runInShell(
        folder.path(),
        "OPCMODEL_TRACED=1 ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e trace=%file,%network -o trace '" +
            program + "' --gtest_filter=OutsideAccess.isNeverGivenToADocument 2>&1");
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    std::istringstream trace(readFile<std::string>(folder / "trace"));
    int marks = 0;
    bool isReading = false;
    for (std::string line; std::getline(trace, line);) {
        const bool isMark = line.find(BEGIN) != std::string::npos || line.find(END) != std::string::npos;
        EXPECT_TRUE(isMark || !isReading) << line;
        marks += isMark ? 1 : 0;
        isReading = line.find(BEGIN) != std::string::npos || (isReading && !isMark);
    }
    EXPECT_EQ(marks, 8) << "two for each reader";
}

TEST_F(OutsideAccess, isGivenToTheCallerForOneRead) {
    SchemaParser parser;
    auto* const configuration = parser.get()->getDomConfig();
    const auto read = [&](const std::string& text, const std::u16string& location,
                          const std::u16string& space) {
        const std::vector<unsigned char> bytes = toBytes(text);
        opc::ByteArrayInAdaptor stream(bytes);
        XercesHelper::readDocumentFromStream(parser.get(), stream, true, location, space);
    };
    for (const bool inSpace : {true, false}) {
        const std::string start = inSpace ? "<a xmlns='urn:s'>" : "<a>";
        const std::u16string location = (folder / (inSpace ? "s.xsd" : "n.xsd")).u16string();
        const std::u16string space = inSpace ? u"urn:s" : u"";
        EXPECT_THROW(read(start + "1</a>", u"", space), InvalidXMLDocument);
        EXPECT_NO_THROW(read(start + "1</a>", location, space));
        EXPECT_THROW(read(start + "x</a>", location, space), InvalidXMLDocument);
        for (const XMLCh* parameter : {xercesc::XMLUni::fgXercesSchemaExternalSchemaLocation,
                                       xercesc::XMLUni::fgXercesSchemaExternalNoNameSpaceSchemaLocation,
                                       xercesc::XMLUni::fgDOMErrorHandler})
            EXPECT_EQ(configuration->getParameter(parameter), nullptr);
    }
    const std::string hint =
        "<a xmlns='urn:s' " + XSI + "xsi:schemaLocation='urn:s " + (folder / "s.xsd").string() + "'>1</a>";
    EXPECT_NO_THROW(read(hint, (folder / "n.xsd").u16string(), u""));
    EXPECT_THROW(read(hint, u"", u""), InvalidXMLDocument);
    // A schema that can't be opened is only a warning for Xerces, which doesn't count.
    EXPECT_NO_THROW(
        read("<a xmlns='urn:s'>1</a>", (folder / "s.xsd").u16string() + u" urn:b /missing.xsd", u"urn:s"));
}

} // namespace
