#include "SchemaParser.hpp"
#include "support/TemporaryFolder.hpp"

#include <netinet/in.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <fstream>
#include <sstream>

namespace {

using namespace opc::model;
using namespace opc::test;
namespace fs = std::filesystem;

class FileDescriptor {
public:
    explicit FileDescriptor(int opened) : descriptor(opened) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(descriptor); }
    int get() const { return descriptor; }

    /// Whether something waits there to be read or accepted.
    bool isReady() const {
        pollfd entry = {descriptor, POLLIN, 0};
        return poll(&entry, 1, 0) == 1;
    }

private:
    int descriptor;
};

/// A folder that sees what is opened in it, and a port that sees who connects.
class OutsideAccess : public testing::Test {
protected:
    OutsideAccess() : files(inotify_init1(IN_NONBLOCK)), port(socket(AF_INET, SOCK_STREAM, 0)) {
        std::ofstream(folder / "s.xsd") << "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                                           "targetNamespace='urn:s'><xs:element name='a' type='xs:integer'/>"
                                           "</xs:schema>";
        std::ofstream(folder / "n.xsd") << "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                           "<xs:element name='a' type='xs:integer'/></xs:schema>";
        EXPECT_GE(inotify_add_watch(files.get(), folder.path().c_str(), IN_OPEN), 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(port.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(port.get(), 8), 0);
        EXPECT_EQ(getsockname(port.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
        server = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/s.xsd";
    }

    /// A call of the system that a trace shows, and that does nothing.
    static void mark(const char* place) { access(place, F_OK); }

    TemporaryFolder folder;
    FileDescriptor files;
    FileDescriptor port;
    std::string server;
};

constexpr char BEGIN[] = "/reading-begins";
constexpr char END[] = "/reading-ends";

/// Documents that ask for a resource. `@` stands for the root element of a grammar that is cached.
const char* const HOSTILE[] = {
    "<a xmlns='urn:s' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='urn:s "
    "%'>1</a>",
    "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:noNamespaceSchemaLocation='%'>1</a>",
    "<@ xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='urn:s %'/>",
    "<@ xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:noNamespaceSchemaLocation='%'/>",
    "<@ xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='urn:s %'><s:a "
    "xmlns:s='urn:s'/></@>",
    "<@ xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:s='urn:s' xsi:schemaLocation='urn:s %' "
    "xsi:type='s:t'/>",
    "<!DOCTYPE a SYSTEM '%'><a/>",
    "<!DOCTYPE a PUBLIC 'p' '%'><a/>",
    "<!DOCTYPE a [<!ENTITY e SYSTEM '%'>]><a>&e;</a>",
    "<!DOCTYPE a [<!ENTITY % e SYSTEM '%'> %e;]><a/>",
    "<a xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='%'/></a>",
    "<?xml-stylesheet href='%'?><?xml-model href='%'?><a/>",
};

std::string replacedAll(std::string text, const std::string& mark, const std::string& value) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, mark.size(), value);
    return text;
}

TEST_F(OutsideAccess, isNeverGivenToADocument) {
    const struct {
        std::initializer_list<const EmbeddedSchema*> schemas;
        const char* name;
        const char* attributes;
    } readers[] = {
        {{&schemas::CONTENT_TYPES},
         "Types",
         "xmlns='http://schemas.openxmlformats.org/package/2006/content-types'"},
        {{&schemas::RELATIONSHIPS},
         "Relationships",
         "xmlns='http://schemas.openxmlformats.org/package/2006/relationships'"},
        {{&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE, &schemas::DCMI_TERMS,
          &schemas::CORE_PROPERTIES},
         "coreProperties",
         "xmlns='http://schemas.openxmlformats.org/package/2006/metadata/core-properties'"},
        {{&schemas::PACKAGE_SIGNATURE, &schemas::XML_SIGNATURE},
         "Object",
         "xmlns='http://www.w3.org/2000/09/xmldsig#'"},
    };
    const std::string places[] = {(folder / "s.xsd").string(), "file://" + (folder / "s.xsd").string(),
                                  fs::relative(folder / "n.xsd").string(), server};
    for (const auto& reader : readers) {
        SchemaParser parser(reader.schemas);
        mark(BEGIN);
        for (const char* hostile : HOSTILE) {
            for (const std::string& place : places) {
                std::string document = replacedAll(hostile, "%", place);
                document =
                    replacedAll(document, "<@", "<" + std::string(reader.name) + " " + reader.attributes);
                document = replacedAll(document, "</@", "</" + std::string(reader.name));
                parser.refusal(document, true);
                ASSERT_FALSE(files.isReady()) << document;
                ASSERT_FALSE(port.isReady()) << document;
            }
        }
        mark(END);
    }
}

/// The same under a trace of the system's calls: between the marks there is none that names a file or touches
/// the network, wherever the document would have led.
TEST_F(OutsideAccess, showsInNoTrace) {
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    const auto outcome =
        folder.run("ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e trace=%file,%network -o trace '" + program +
                   "' --gtest_filter=OutsideAccess.isNeverGivenToADocument 2>&1");
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
    const auto read = [&](const char* text, const std::u16string& location, const std::u16string& space) {
        const std::vector<unsigned char> bytes = toBytes(text);
        opc::ByteArrayInAdaptor stream(bytes);
        XercesHelper::readDocumentFromStream(parser.get(), stream, true, location, space);
    };
    const struct {
        const char* good;
        const char* bad;
        fs::path location;
        std::u16string space;
    } cases[] = {
        {"<a xmlns='urn:s'>1</a>", "<a xmlns='urn:s'>x</a>", folder / "s.xsd", u"urn:s"},
        {"<a>1</a>", "<a>x</a>", folder / "n.xsd", u""},
    };
    for (const auto& test : cases) {
        EXPECT_THROW(read(test.good, u"", test.space), InvalidXMLDocument);
        EXPECT_NO_THROW(read(test.good, test.location.u16string(), test.space));
        EXPECT_TRUE(files.isReady()) << "the folder must see what is opened";
        EXPECT_THROW(read(test.bad, test.location.u16string(), test.space), InvalidXMLDocument);
        for (const XMLCh* parameter : {xercesc::XMLUni::fgXercesSchemaExternalSchemaLocation,
                                       xercesc::XMLUni::fgXercesSchemaExternalNoNameSpaceSchemaLocation,
                                       xercesc::XMLUni::fgDOMErrorHandler})
            EXPECT_EQ(configuration->getParameter(parameter), nullptr);
    }
    const std::string hint = "<a xmlns='urn:s' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                             "xsi:schemaLocation='urn:s " +
                             (folder / "s.xsd").string() + "'>1</a>";
    EXPECT_NO_THROW(read(hint.c_str(), (folder / "n.xsd").u16string(), u""));
    EXPECT_THROW(read(hint.c_str(), u"", u""), InvalidXMLDocument);
    // A schema that can't be opened is worth a warning to Xerces, and that counts for nothing.
    EXPECT_NO_THROW(
        read("<a xmlns='urn:s'>1</a>", (folder / "s.xsd").u16string() + u" urn:b /missing.xsd", u"urn:s"));
}

} // namespace
