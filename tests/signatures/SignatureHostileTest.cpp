#include "signatures/SignatureDocuments.hpp"
#include "support/PackageContent.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>

#include <ctime>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr char TOO_DEEP[] = "XML signature: Elements are nested too deeply.";

std::string nested(const std::string& begin, std::size_t levels, const std::string& content,
                   const std::string& end) {
    return repeated(begin, levels) + content + repeated(end, levels);
}

std::string withObject(const std::string& content) {
    return inserted(USUAL_SIGNATURE, "</Object>", "<Object Id='x'>" + content + "</Object>");
}

class HostileSignature : public SignatureDocument {};

constexpr char LONG_TOKEN[] = "XML content can not have tags or comments of more than 4 MiB";
constexpr char TOO_MANY_ASIDES[] =
    "XML signature: There are more than 2000 comments, CDATA sections and processing instructions.";

TEST_F(HostileSignature, endsInSecondsOfWork) {
    const std::string reference =
        "<Reference URI='/a.xml'><DigestMethod Algorithm='urn:any'/><DigestValue>AQ=="
        "</DigestValue></Reference>";
    const std::string signedReference = replaced(
        reference, "URI='/a.xml'", "URI='#idPackageObject' Type='http://www.w3.org/2000/09/xmldsig#Object'");
    const std::string transform =
        "<Transform Algorithm='http://schemas.openxmlformats.org/package/2006/RelationshipTransform'>";
    const std::string big(10000000, 'A');
    const std::string comments = repeated("<!---->", 9000);
    const auto inObjects = [](const std::string& content) {
        return withObject("<any xmlns='urn:any'>" + nested("<Object Id='y'>", 4, content, "</Object>") +
                          "</any>");
    };
    struct Case {
        const char* what;
        std::string document;
        const char* message = nullptr; ///< null if it is read
    };
    const Case cases[] = {
        {"deep elements", withObject(nested("<a>", 100000, "", "</a>")),
         "XML content can not be nested deeper than 1000 elements"},
        {"deep objects",
         withObject(nested("<any xmlns='urn:any'><Object Id='y'>", 400, big, "</Object></any>")), TOO_DEEP},
        {"instructions and comments", withObject(repeated("<?a?>", 100000) + comments), TOO_MANY_ASIDES},
        {"CDATA sections and comments", withObject(repeated("<![CDATA[x]]>", 50000) + comments),
         TOO_MANY_ASIDES},
        {"the same in objects", inObjects(repeated("<?a?>", 20000) + comments), TOO_MANY_ASIDES},
        {"text and comments in objects", inObjects(repeated("a<!---->", 9999)), TOO_MANY_ASIDES},
        {"as many asides as may be", inObjects(repeated("<a/>", 20000) + repeated("a<!---->", 1998))},
        {"many references", inserted(USUAL_SIGNATURE, "<Manifest>", repeated(reference, 50000))},
        {"many objects referred to",
         inserted(USUAL_SIGNATURE, "</Reference>", repeated(signedReference, 50000)),
         "XML signature: SignedInfo references idPackageObject more than once."},
        {"many relationships",
         inserted(USUAL_SIGNATURE, "<!--part-->",
                  "<Transforms>" + transform + repeated("<pds:RelationshipReference SourceId='r'/>", 50000) +
                      "</Transform></Transforms>")},
        {"many transforms",
         inserted(USUAL_SIGNATURE, "<!--part-->",
                  "<Transforms>" + repeated(transform + "</Transform>", 50000) + "</Transforms>")},
        {"many properties",
         inserted(USUAL_SIGNATURE, "<SignatureProperties>",
                  repeated("<SignatureProperty Target=''><a xmlns='urn:a'/></SignatureProperty>", 50000))},
        {"a long URI", replaced(USUAL_SIGNATURE, "/a.xml", "/" + big), LONG_TOKEN},
        {"a long identifier", replaced(USUAL_SIGNATURE, "Signature7", "Signature" + big), LONG_TOKEN},
        {"a long comment", replaced(USUAL_SIGNATURE, "<!--part-->", "<!--" + big + "-->"), LONG_TOKEN},
        {"a long value", replaced(USUAL_SIGNATURE, "BAUG", big)},
        {"a long modulus",
         withKeyInfo(USUAL_SIGNATURE, "<KeyValue><RSAKeyValue><Modulus>" + big +
                                          "</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue>")},
        {"a text that grows in writing", withObject(std::string(10000000, '>'))},
    };
    for (const Case& c : cases) {
        const std::clock_t start = std::clock();
        if (c.message)
            EXPECT_RAISES(InvalidPartContent, c.message, read(c.document)) << c.what;
        else
            EXPECT_NO_THROW(read(c.document)) << c.what;
        EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 10) << c.what;
    }
}

TEST_F(HostileSignature, elementsThatMultiplyTheWorkAreNestedAFewLevelsOnly) {
    // Each is read once for every element around it: here at least for an object, a reference and a transform.
    const auto inPart = [](const std::string& content) {
        return inserted(USUAL_SIGNATURE, "<!--part-->",
                        "<Transforms><Transform Algorithm='urn:a'><any xmlns='urn:any'>" + content +
                            "</any></Transform></Transforms>");
    };
    const std::string digest = "<DigestMethod Algorithm='urn:a'/><DigestValue>AQ==</DigestValue>";
    const std::string attributes = " Id='y' URI='/b.xml' Algorithm='urn:a'>";
    const char* const names[] = {"Object", "Reference", "Transform", "SignatureProperty"};
    for (const std::string name : names) {
        const std::string begin = "<" + name + attributes, end = "</" + name + ">";
        const auto levels = [&](std::size_t count) {
            return nested(begin, count, digest, end) + repeated(begin + digest + end, 100);
        };
        EXPECT_RAISES(InvalidPartContent, "XML signature: " + name + " stands in the wrong place.",
                      read(inPart(levels(3))));
        EXPECT_RAISES(InvalidPartContent, TOO_DEEP, read(inPart(levels(4)))) << name;
        const std::string elsewhere = withObject("<any xmlns='urn:any'>" + levels(400) + "</any>");
        if (name == "Object")
            EXPECT_RAISES(InvalidPartContent, TOO_DEEP, read(elsewhere));
        else
            EXPECT_NO_THROW(read(elsewhere)) << name << " isn't looked at there";
    }
    const std::string mixed = "<Reference><Transform><SignatureProperty><Object/></SignatureProperty>"
                              "</Transform></Reference>";
    EXPECT_RAISES(InvalidPartContent, TOO_DEEP, read(inPart(mixed)));
}

/// Gives the beginning of a document, and then runs out of memory.
class StreamOutOfMemory : public opc::ByteArrayInAdaptor {
public:
    explicit StreamOutOfMemory(const Bytes& bytes) : ByteArrayInAdaptor(bytes) {}

    bool isDone() const override { return false; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        if (ByteArrayInAdaptor::isDone())
            throw std::bad_alloc();
        return ByteArrayInAdaptor::read(buffer, count);
    }
};

TEST_F(HostileSignature, theReaderOutlivesAParserWithoutMemory) {
    const Bytes beginning = toBytes(USUAL_SIGNATURE.substr(0, 300));
    for (int i = 0; i < 2; ++i) {
        StreamOutOfMemory stream(beginning);
        DigitalSignatureData unfinished;
        EXPECT_THROW(serializer.readSignature(stream, unfinished), std::bad_alloc);
    }
    EXPECT_EQ(read(USUAL_SIGNATURE).m_signatureId, u"7");
}

} // namespace
