#include "SchemaParser.hpp"
#include "support/Throws.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <chrono>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::initializer_list<const EmbeddedSchema*> CORE_PROPERTIES_ORDER = {
    &schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE, &schemas::DCMI_TERMS,
    &schemas::CORE_PROPERTIES};
const std::initializer_list<const EmbeddedSchema*> SIGNATURE_ORDER = {&schemas::PACKAGE_SIGNATURE,
                                                                      &schemas::XML_SIGNATURE};

/// A document and a part of the message that refuses it; none if it is accepted.
struct Case {
    std::string document;
    const char* refusal = nullptr;
};

void check(SchemaParser& parser, const std::vector<Case>& cases) {
    for (const Case& test : cases) {
        const std::string refusal = parser.refusal(test.document);
        if (!test.refusal)
            EXPECT_EQ(refusal, "") << test.document;
        else
            EXPECT_TRUE(refusal.find(test.refusal) != std::string::npos) << test.document << "\n" << refusal;
    }
}

/// The same for values that `wrap` makes documents of.
template <typename Wrap>
void check(SchemaParser& parser, const Wrap& wrap, const char* refusal,
           const std::vector<std::string>& values) {
    for (const std::string& value : values)
        check(parser, {{wrap(value), refusal}});
}

/// Fails the test for everything that Xerces has to say, warnings too.
class Listener : public xercesc::DOMErrorHandler {
public:
    bool handleError(const xercesc::DOMError& error) override {
        char* text = xercesc::XMLString::transcode(error.getMessage());
        ADD_FAILURE() << text;
        xercesc::XMLString::release(&text);
        return true;
    }
};

TEST(Schemas, loadWithoutEvenAWarningAndNameNoPlaceToLoadFrom) {
    const XercesGuard guard;
    const std::initializer_list<const EmbeddedSchema*> contentTypes = {&schemas::CONTENT_TYPES};
    const std::initializer_list<const EmbeddedSchema*> relationships = {&schemas::RELATIONSHIPS};
    for (const auto& order : {CORE_PROPERTIES_ORDER, SIGNATURE_ORDER, contentTypes, relationships}) {
        const auto parser = XercesHelper::createParser();
        Listener listener;
        auto* const configuration = parser->getDomConfig();
        configuration->setParameter(xercesc::XMLUni::fgXercesUseCachedGrammarInParse, true);
        configuration->setParameter(xercesc::XMLUni::fgXercesSchemaFullChecking, true);
        configuration->setParameter(
            xercesc::XMLUni::fgDOMErrorHandler,
            static_cast<const void*>(static_cast<xercesc::DOMErrorHandler*>(&listener)));
        for (const EmbeddedSchema* schema : order) {
            const xercesc::Wrapper4InputSource source(
                new xercesc::MemBufInputSource(schema->text, schema->size, schema->bufferName));
            EXPECT_NE(parser->loadGrammar(&source, xercesc::Grammar::SchemaGrammarType, true), nullptr)
                << schema->bufferName;
            const std::string text(reinterpret_cast<const char*>(schema->text), schema->size);
            for (const char* word : {"schemaLocation", "DOCTYPE", "annotation", "include"})
                EXPECT_EQ(text.find(word), std::string::npos) << schema->bufferName;
        }
    }
}

TEST(GrammarLoading, failsWithTheMessageOfXercesOrSaysNothing) {
    const XercesGuard guard;
    const std::string text = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'";
    const EmbeddedSchema broken = {"broken.xsd", reinterpret_cast<const unsigned char*>(text.data()),
                                   text.size()};
    const auto parser = XercesHelper::createParser();
    EXPECT_RAISES(InvalidXMLSchema, "Schema could not be loaded: fatal error during schema scan",
                  loadGrammars(parser.get(), {&broken}));
    struct Incomplete {
        std::initializer_list<const EmbeddedSchema*> order;
        std::string message;
    };
    const Incomplete missing[] = {
        {{&schemas::CORE_PROPERTIES}, "grammar not found for namespace 'http://purl.org/dc/terms/'"},
        {{&schemas::XML, &schemas::DCMI_TERMS, &schemas::DUBLIN_CORE},
         "grammar not found for namespace 'http://purl.org/dc/elements/1.1/'"},
        {{&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TERMS},
         "type 'http://purl.org/dc/dcmitype/:DCMIType' not found"},
    };
    for (const auto& [order, message] : missing) {
        const auto incomplete = XercesHelper::createParser();
        EXPECT_TRUE(throws<InvalidXMLSchema>("Schema could not be loaded: " + message, [&, &schemas = order] {
            loadGrammars(incomplete.get(), schemas);
        }));
    }
    EXPECT_NO_THROW(loadGrammarUnchecked(parser.get(), broken));
    EXPECT_NO_THROW(loadGrammars(parser.get(), CORE_PROPERTIES_ORDER));
}

std::string types(const std::string& children) {
    return "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>" + children +
           "</Types>";
}

std::string withContentType(const std::string& value) {
    return types("<Override PartName='/a' ContentType='" + value + "'/>");
}

std::string withExtension(const std::string& value) {
    return types("<Default ContentType='a/b' Extension='" + value + "'/>");
}

TEST(Schemas, contentTypes) {
    SchemaParser parser({&schemas::CONTENT_TYPES});
    const char* const badType = "does not match regular expression facet";
    check(
        parser,
        {
            {types("")},
            {types("<Override PartName='/a' ContentType='a/b'/><Default Extension='x' ContentType='a/b'/>")},
            {types("<Other/>"), "no declaration found for element 'Other'"},
            {types("text"), "no character data is allowed"},
            {types("<Default Extension='x'/>"), "missing required attribute 'ContentType'"},
            {types("<Default ContentType='a/b'/>"), "missing required attribute 'Extension'"},
            {types("<Override ContentType='a/b'/>"), "missing required attribute 'PartName'"},
            {types("<Override PartName='/a' ContentType='a/b' xml:lang='en'/>"), "is not declared"},
            {types("<Override PartName='/a' ContentType='a/b'> </Override>"), "no character data is allowed"},
        });
    check(parser, withExtension, nullptr, {"xml", "PNG", "a%20b~!"});
    check(parser, withExtension, badType, {"", ".xml", "a b", "a/b", "%2", "\xC3\xA9"});
    check(parser, withContentType, nullptr,
          {"application/vnd.openxmlformats-package.relationships+xml", "text/plain;charset=utf-8",
           "a/b ; c=d;\te=f", "a/b;c=\"\"", "a/b;c=\"d e;/\xC3\xA9\"", "a/b;c=\"\\\"\\x\""});
    check(parser, withContentType, badType,
          {"", "a", "a/", "/b", " a/b", "a/b ", "a/b;", "a/b;c", "a/b;c=", "a/b;c = d", "a/b;c=\"d",
           "a/b;c=d\"e\"", "a/b(c)", "a/\xC3\xA9", "a/b;c=\"\xC4\x80\""});
}

TEST(Schemas, contentTypesTakeLinearTimeOnHostileValues) {
    SchemaParser parser({&schemas::CONTENT_TYPES});
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& value :
         {"a/b" + repeated(" ", 10000) + "x", "a/b;c=\"" + repeated(" ", 100000),
          "a/b;c=\"" + repeated("\\", 100000) + "!", "a/b" + repeated(";c=d", 10000) + ";",
          "a/b" + repeated("; c=\"\\\"\"", 10000) + "\"", repeated("a", 100000)})
        EXPECT_NE(parser.refusal(withContentType(value)), "") << value.substr(0, 20);
    EXPECT_EQ(parser.refusal(withContentType("a/b;c=\"" + repeated("d", 100000) + "\"")), "");
    EXPECT_EQ(parser.refusal(withExtension(repeated("%20", 10000))), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

std::string relationships(const std::string& children) {
    return "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" + children +
           "</Relationships>";
}

std::string relationship(const std::string& attributes, const std::string& content = "") {
    return "<Relationship " + attributes + ">" + content + "</Relationship>";
}

TEST(Schemas, relationships) {
    SchemaParser parser({&schemas::RELATIONSHIPS});
    const std::string rest = " Type='t' Target='a'";
    const auto withId = [&](const std::string& id) {
        return relationships(relationship("Id='" + id + "'" + rest));
    };
    const auto withMode = [&](const std::string& mode) {
        return relationships(relationship("Id='a' TargetMode='" + mode + "'" + rest));
    };
    check(parser,
          {
              {relationships("")},
              {relationships(relationship("Id='a' Type='' Target=''", "text") + " " +
                             relationship("Id='b'" + rest))},
              {relationships("text"), "no character data is allowed"},
              {relationships(relationship("Id='a'" + rest, "<b/>")), "no declaration found"},
              {relationships(relationship("Type='t' Target='a'")), "missing required attribute 'Id'"},
              {relationships(relationship("Id='a' Target='a'")), "missing required attribute 'Type'"},
              {relationships(relationship("Id='a' Type='t'")), "missing required attribute 'Target'"},
              {relationships(relationship("Id='a' xml:lang='en'" + rest)), "is not declared"},
              {relationships(relationship("Id='a' Type='t' Target='a b|c\xC3\xA9'"))},
              {relationships(relationship("Id='a'" + rest) + relationship("Id='a'" + rest)), "is not unique"},
              {relationships(relationship("Id='a'" + rest) + relationship("Id='A'" + rest))},
          });
    check(parser, withId, nullptr, {"rId1", " _a-b.c ", "Signature\xC3\xA9"});
    check(parser, withId, "NCName", {"1a", "a:b", "a b"});
    check(parser, withId, "cannot have empty value", {""});
    check(parser, withMode, nullptr, {"External", "Internal"});
    check(parser, withMode, "enumeration", {"external", " External", ""});
}

std::string coreProperties(const std::string& children) {
    return "<cp:coreProperties "
           "xmlns:cp='http://schemas.openxmlformats.org/package/2006/metadata/core-properties'"
           " xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:dcterms='http://purl.org/dc/terms/'"
           " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
           " xmlns:xs='http://www.w3.org/2001/XMLSchema'>" +
           children + "</cp:coreProperties>";
}

std::string created(const std::string& value, const std::string& type = "dcterms:W3CDTF") {
    return coreProperties("<dcterms:created xsi:type='" + type + "'>" + value + "</dcterms:created>");
}

TEST(Schemas, coreProperties) {
    SchemaParser parser(CORE_PROPERTIES_ORDER);
    check(
        parser,
        {
            {coreProperties("")},
            {coreProperties(
                "<cp:version>1</cp:version><dc:title/><cp:category/><cp:contentStatus/><cp:contentType/>"
                "<dcterms:created/><dc:creator/><dc:description/><dc:identifier/><cp:keywords/><dc:language/>"
                "<cp:lastModifiedBy/><cp:lastPrinted>2006-01-01T00:00:00</cp:lastPrinted><dcterms:modified/>"
                "<cp:revision/><dc:subject/>")},
            {coreProperties("<dc:title/><dc:title/>"), "is not allowed for content model"},
            {coreProperties("<dc:publisher/>"), "is not allowed for content model"},
            {coreProperties("<dcterms:issued/>"), "is not allowed for content model"},
            {coreProperties("<cp:title/>"), "no declaration found"},
            {coreProperties("text"), "no character data is allowed"},
            {coreProperties("<dc:title xml:lang='en-US'>a</dc:title>")},
            {coreProperties("<dc:title xml:lang=''>a</dc:title>")},
            {coreProperties("<dc:title xml:lang='en US'>a</dc:title>"), "union"},
            {coreProperties("<dc:title>a<b/></dc:title>"), "grammar not found"},
            {coreProperties("<cp:category xml:lang='en'/>"), "is not declared"},
            {coreProperties("<cp:lastPrinted/>"), "date"},
            {coreProperties("<cp:lastPrinted>2006-01-01</cp:lastPrinted>"), "date"},
            {coreProperties("<cp:keywords xml:lang='en'>a <cp:value xml:lang='fr'>b</cp:value> c<cp:value/>"
                            "</cp:keywords>")},
            {coreProperties("<cp:keywords><value>a</value></cp:keywords>"), "grammar not found"},
            {coreProperties("<cp:keywords><cp:value>a<cp:value/></cp:value></cp:keywords>"),
             "no declaration found"},
            {created("anything", "dcterms:LCSH")},
            {created("Sound", "dcterms:DCMIType")},
            {created("Noise", "dcterms:DCMIType"), "union"},
            {created("en-US", "dcterms:RFC3066")},
            {created("en US", "dcterms:RFC1766"), "does not match"},
            {created("http://a/b", "dcterms:URI")},
            {created("2006", "xs:string"), "does not derive from"},
            {created("2006", "dcterms:Nothing"), "cannot be resolved"},
        });
    const auto asDate = [](const std::string& value) { return created(value); };
    check(parser, asDate, nullptr,
          {"2006", "2006-01", "2006-01-31", "2006-01-31T23:59:59", " 2006-01-31T23:59:59.123456+14:00 "});
    check(parser, asDate, "union", {"2006-13", "2006-02-30", "2006-01-31T23:59Z", "yesterday", ""});
}

std::string signatureTime(const std::string& format, const std::string& value) {
    return "<SignatureTime "
           "xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'><Format>" +
           format + "</Format><Value>" + value + "</Value></SignatureTime>";
}

TEST(Schemas, packageElementsOfASignature) {
    SchemaParser parser(SIGNATURE_ORDER);
    const char* const mismatch = "does not match regular expression facet";
    const auto withFormat = [](const std::string& format) { return signatureTime(format, "2006"); };
    const auto withValue = [](const std::string& value) { return signatureTime("YYYY", value); };
    check(parser, withFormat, nullptr,
          {"YYYY", "YYYY-MM", "YYYY-MM-DD", "YYYY-MM-DDThh:mmTZD", "YYYY-MM-DDThh:mm:ssTZD",
           "YYYY-MM-DDThh:mm:ss.sTZD"});
    check(parser, withFormat, mismatch, {"", "yyyy", "YYYY-MM-DDThh:mm", "YYYY-MM-DDThh:mm:ss.ssTZD"});
    check(parser, withValue, nullptr,
          {"0000", "2006-12", "2006-02-31", "2006-01-31T23:59Z", "2006-01-31T00:00+23:59",
           "2006-01-31T23:59:59Z", "2006-01-31T23:59:59.9-05:30"});
    check(parser, withValue, mismatch,
          {"", "206", "20066", " 2006", "2006-00", "2006-13", "2006-01-00", "2006-01-32", "2006-01-31T23:59",
           "2006-01-31T24:00Z", "2006-01-31T23:60Z", "2006-01-31T23:59:60Z", "2006-01-31T23:59:59.Z",
           "2006-01-31T23:59:59.99Z", "2006-01-31T23:59:59+24:00", "2006-01-31T23:59:59z",
           "2006-01-31 23:59Z"});
    const std::string space = " xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'";
    check(parser, {{"<RelationshipReference" + space + " SourceId=' any text '/>"},
                   {"<RelationshipReference" + space + "/>", "missing required attribute 'SourceId'"},
                   {"<RelationshipsGroupReference" + space +
                    " SourceType='http://a/b'>c</RelationshipsGroupReference>"},
                   {"<RelationshipsGroupReference" + space + "/>", "missing required attribute 'SourceType'"},
                   {"<SignatureTime" + space + "/>", "content model '(Format,Value)'"}});
}

std::string signature(const std::string& signedInfo, const std::string& rest) {
    return "<Signature xmlns='http://www.w3.org/2000/09/xmldsig#' Id='s'><SignedInfo>" + signedInfo +
           "</SignedInfo>" + rest + "</Signature>";
}

TEST(Schemas, xmlSignature) {
    SchemaParser parser(SIGNATURE_ORDER);
    const std::string methods =
        "<CanonicalizationMethod Algorithm='urn:c'/><SignatureMethod Algorithm='urn:s'/>";
    const std::string digest = "<DigestMethod Algorithm='urn:d'/><DigestValue>AAAA</DigestValue>";
    const std::string reference = "<Reference>" + digest + "</Reference>";
    const std::string value = "<SignatureValue>AA\n AA</SignatureValue>";
    const auto withTransform = [&](const std::string& content) {
        return signature(methods + "<Reference URI='#a' Id='r' Type=''><Transforms>" + content +
                             "</Transforms>" + digest + "</Reference>",
                         value);
    };
    const auto withKey = [&](const std::string& content) {
        return signature(methods + reference, value + "<KeyInfo>" + content + "</KeyInfo>");
    };
    const auto withObject = [&](const std::string& content) {
        return signature(methods + reference, value + content);
    };
    check(
        parser,
        {
            {signature(methods + reference + reference, value)},
            {signature(methods + reference, ""), "content model"},
            {signature(methods, value), "content model"},
            {signature(methods + "<Reference><DigestValue>AAAA</DigestValue></Reference>", value),
             "is not allowed for content model"},
            {signature("<CanonicalizationMethod/>", value), "missing required attribute 'Algorithm'"},
            {signature("<CanonicalizationMethod Algorithm=''><x xmlns='u'/></CanonicalizationMethod>", value),
             "found for"},
            {signature("<CanonicalizationMethod Algorithm=''/><SignatureMethod Algorithm=''>"
                       "<HMACOutputLength>long</HMACOutputLength></SignatureMethod>",
                       value),
             "does not match"},
            {signature(methods + reference, "<SignatureValue>A?AA</SignatureValue>"),
             "is invalid Base64-encoded binary"},
            {signature(methods + reference, "<SignatureValue>AAA</SignatureValue>"),
             "is invalid Base64-encoded binary"},
            {withTransform(
                "<Transform Algorithm='a'>t<XPath>x</XPath><x xmlns='u' y=''><z/></x></Transform>")},
            {withTransform("<Transform/>"), "missing required attribute 'Algorithm'"},
            {withTransform(""), "content model"},
            {withTransform("<Transform Algorithm='a'><RelationshipReference SourceId='a' xmlns='http://"
                           "schemas.openxmlformats.org/package/2006/digital-signature'/></Transform>")},
            {withTransform("<Transform Algorithm='a'><RelationshipReference xmlns='http://"
                           "schemas.openxmlformats.org/package/2006/digital-signature'/></Transform>"),
             "missing required attribute 'SourceId'"},
            {withKey("text<KeyName>a</KeyName><x xmlns='u'/><MgmtData/>")},
            {withKey(""), "content model"},
            {withKey(
                "<X509Data><X509Certificate>AAAA</X509Certificate><X509SubjectName/><X509IssuerSerial>"
                "<X509IssuerName/><X509SerialNumber>-1</X509SerialNumber></X509IssuerSerial></X509Data>")},
            {withKey("<X509Data/>"), "content model"},
            {withKey("<KeyValue><RSAKeyValue><Modulus>AA==</Modulus><Exponent>AQAB</Exponent></RSAKeyValue>"
                     "</KeyValue>")},
            {withKey("<KeyValue><RSAKeyValue><Modulus>AA==</Modulus></RSAKeyValue></KeyValue>"),
             "content model"},
            {withKey("<KeyValue><DSAKeyValue><P/><Q/><Y/><Seed/><PgenCounter/></DSAKeyValue></KeyValue>")},
            {withKey("<KeyValue><DSAKeyValue><P/><Y/></DSAKeyValue></KeyValue>"),
             "is not allowed for content model"},
            {withKey("<PGPData><PGPKeyPacket/><x xmlns='u'/></PGPData>")},
            {withKey("<PGPData><PGPKeyID/><PGPKeyPacket/></PGPData>")},
            {withKey("<SPKIData><SPKISexp/><x xmlns='u'/><SPKISexp/></SPKIData>")},
            {withKey("<RetrievalMethod URI='a'/>")},
            {withObject("<Object Id='o' MimeType='' Encoding=''>text<x xmlns=''/></Object><Object/>")},
            {withObject("<Object Id='s'/>"), "is not unique"},
            {withObject("<Object Id='1'/>"), "NCName"},
            {withObject("<Object><Manifest>" + reference + "</Manifest></Object>")},
            {withObject("<Object><Manifest/></Object>"), "content model"},
            {withObject("<Object><SignatureProperties><SignatureProperty Target='#s'>" +
                        signatureTime("YYYY", "2006") +
                        "</SignatureProperty></SignatureProperties></Object>")},
            {withObject("<Object><SignatureProperties><SignatureProperty Target='#s'>" +
                        signatureTime("YYYY", "206") + "</SignatureProperty></SignatureProperties></Object>"),
             "does not match regular expression facet"},
            {withObject("<Object><SignatureProperty Target=''/></Object>"), "content model"},
        });
}

} // namespace
