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

const char* const ACCEPTED = nullptr;

/// Texts by a part of the message that refuses the documents that `wrap` makes of them.
template <typename Wrap>
void check(SchemaParser& parser, const Wrap& wrap,
           const std::vector<std::pair<const char*, std::vector<std::string>>>& rows) {
    for (const auto& [refusal, texts] : rows)
        for (const std::string& text : texts) {
            const std::string said = parser.refusal(wrap(text));
            EXPECT_TRUE(refusal ? said.find(refusal) != std::string::npos : said.empty())
                << wrap(text) << '\n'
                << said;
        }
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
    const Incomplete incomplete[] = {
        {{&schemas::CORE_PROPERTIES}, "grammar not found for namespace 'http://purl.org/dc/terms/'"},
        {{&schemas::XML, &schemas::DCMI_TERMS, &schemas::DUBLIN_CORE},
         "grammar not found for namespace 'http://purl.org/dc/elements/1.1/'"},
        {{&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TERMS},
         "type 'http://purl.org/dc/dcmitype/:DCMIType' not found"},
    };
    for (const Incomplete& test : incomplete)
        EXPECT_RAISES(InvalidXMLSchema, "Schema could not be loaded: " + test.message,
                      loadGrammars(XercesHelper::createParser().get(), test.order));
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
        parser, types,
        {{ACCEPTED,
          {"", "<Override PartName='/a' ContentType='a/b'/><Default Extension='x' ContentType='a/b'/>"}},
         {"no declaration found for element 'Other'", {"<Other/>"}},
         {"no character data is allowed", {"text", "<Override PartName='/a' ContentType='a/b'> </Override>"}},
         {"missing required attribute 'ContentType'", {"<Default Extension='x'/>"}},
         {"missing required attribute 'Extension'", {"<Default ContentType='a/b'/>"}},
         {"missing required attribute 'PartName'", {"<Override ContentType='a/b'/>"}},
         {"is not declared", {"<Override PartName='/a' ContentType='a/b' xml:lang='en'/>"}}});
    check(parser, withExtension,
          {{ACCEPTED, {"xml", "PNG", "a%20b~!"}}, {badType, {"", ".xml", "a b", "a/b", "%2", "\xC3\xA9"}}});
    check(parser, withContentType,
          {{ACCEPTED,
            {"application/vnd.openxmlformats-package.relationships+xml", "text/plain;charset=utf-8",
             "a/b ; c=d;\te=f", "a/b;c=\"\"", "a/b;c=\"d e;/\xC3\xA9\"", "a/b;c=\"\\\"\\x\""}},
           {badType,
            {"", "a", "a/", "/b", " a/b", "a/b ", "a/b;", "a/b;c", "a/b;c=", "a/b;c = d", "a/b;c=\"d",
             "a/b;c=d\"e\"", "a/b(c)", "a/\xC3\xA9", "a/b;c=\"\xC4\x80\""}}});
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

TEST(Schemas, relationships) {
    SchemaParser parser({&schemas::RELATIONSHIPS});
    const std::string rest = " Type='t' Target='a'";
    const auto withId = [&](const std::string& id) {
        return relationships("<Relationship Id='" + id + "'" + rest + "/>");
    };
    const auto withMode = [&](const std::string& mode) {
        return relationships("<Relationship Id='a' TargetMode='" + mode + "'" + rest + "/>");
    };
    const std::string a = "<Relationship Id='a'" + rest + "/>";
    check(parser, relationships,
          {{ACCEPTED,
            {"",
             "<Relationship Id='a' Type='' Target=''>text</Relationship> <Relationship Id='A'" + rest + "/>",
             "<Relationship Id='a' Type='t' Target='a b|c\xC3\xA9'/>"}},
           {"no character data is allowed", {"text"}},
           {"no declaration found", {"<Relationship Id='a'" + rest + "><b/></Relationship>"}},
           {"missing required attribute 'Id'", {"<Relationship Type='t' Target='a'/>"}},
           {"missing required attribute 'Type'", {"<Relationship Id='a' Target='a'/>"}},
           {"missing required attribute 'Target'", {"<Relationship Id='a' Type='t'/>"}},
           {"is not declared", {"<Relationship Id='a' xml:lang='en'" + rest + "/>"}},
           {"is not unique", {a + a}}});
    check(parser, withId,
          {{ACCEPTED, {"rId1", " _a-b.c ", "Signature\xC3\xA9"}},
           {"NCName", {"1a", "a:b", "a b"}},
           {"cannot have empty value", {""}}});
    check(parser, withMode,
          {{ACCEPTED, {"External", "Internal"}}, {"enumeration", {"external", " External", ""}}});
}

std::string coreProperties(const std::string& children) {
    return "<cp:coreProperties "
           "xmlns:cp='http://schemas.openxmlformats.org/package/2006/metadata/core-properties'"
           " xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:dcterms='http://purl.org/dc/terms/'"
           " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
           " xmlns:xs='http://www.w3.org/2001/XMLSchema'>" +
           children + "</cp:coreProperties>";
}

TEST(Schemas, coreProperties) {
    SchemaParser parser(CORE_PROPERTIES_ORDER);
    check(
        parser, coreProperties,
        {{ACCEPTED,
          {"",
           "<cp:version>1</cp:version><dc:title/><cp:category/><cp:contentStatus/><cp:contentType/>"
           "<dcterms:created/><dc:creator/><dc:description/><dc:identifier/><cp:keywords/><dc:language/>"
           "<cp:lastModifiedBy/><cp:lastPrinted>2006-01-01T00:00:00</cp:lastPrinted><dcterms:modified/>"
           "<cp:revision/><dc:subject/>",
           "<dc:title xml:lang='en-US'>a</dc:title>", "<dc:title xml:lang=''>a</dc:title>",
           "<cp:keywords xml:lang='en'>a <cp:value xml:lang='fr'>b</cp:value> c<cp:value/></cp:keywords>"}},
         {"is not allowed for content model",
          {"<dc:title/><dc:title/>", "<dc:publisher/>", "<dcterms:issued/>"}},
         {"no declaration found",
          {"<cp:title/>", "<cp:keywords><cp:value>a<cp:value/></cp:value></cp:keywords>"}},
         {"no character data is allowed", {"text"}},
         {"union", {"<dc:title xml:lang='en US'>a</dc:title>"}},
         {"grammar not found", {"<dc:title>a<b/></dc:title>", "<cp:keywords><value>a</value></cp:keywords>"}},
         {"is not declared", {"<cp:category xml:lang='en'/>"}},
         {"date", {"<cp:lastPrinted/>", "<cp:lastPrinted>2006-01-01</cp:lastPrinted>"}}});
    const auto created = [](const std::string& typeAndValue) {
        const auto [type, value] = columns<2>(typeAndValue);
        return coreProperties("<dcterms:created xsi:type='" + type + "'>" + value + "</dcterms:created>");
    };
    check(parser, created,
          {{ACCEPTED,
            {"dcterms:LCSH | anything", "dcterms:DCMIType | Sound", "dcterms:RFC3066 | en-US",
             "dcterms:URI | http://a/b"}},
           {"union", {"dcterms:DCMIType | Noise"}},
           {"does not match", {"dcterms:RFC1766 | en US"}},
           {"does not derive from", {"xs:string | 2006"}},
           {"cannot be resolved", {"dcterms:Nothing | 2006"}}});
    const auto createdAt = [&](const std::string& value) { return created("dcterms:W3CDTF | " + value); };
    check(parser, createdAt,
          {{ACCEPTED,
            {"2006", "2006-01", "2006-01-31", "2006-01-31T23:59:59", " 2006-01-31T23:59:59.123456+14:00 "}},
           {"union", {"2006-13", "2006-02-30", "2006-01-31T23:59Z", "yesterday", ""}}});
}

std::string signatureTime(const std::string& format, const std::string& value) {
    return "<SignatureTime "
           "xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'><Format>" +
           format + "</Format><Value>" + value + "</Value></SignatureTime>";
}

TEST(Schemas, packageElementsOfASignature) {
    SchemaParser parser(SIGNATURE_ORDER);
    const char* const mismatch = "does not match regular expression facet";
    check(parser, [](const std::string& format) { return signatureTime(format, "2006"); },
          {{ACCEPTED,
            {"YYYY", "YYYY-MM", "YYYY-MM-DD", "YYYY-MM-DDThh:mmTZD", "YYYY-MM-DDThh:mm:ssTZD",
             "YYYY-MM-DDThh:mm:ss.sTZD"}},
           {mismatch, {"", "yyyy", "YYYY-MM-DDThh:mm", "YYYY-MM-DDThh:mm:ss.ssTZD"}}});
    check(parser, [](const std::string& value) { return signatureTime("YYYY", value); },
          {{ACCEPTED,
            {"0000", "2006-12", "2006-02-31", "2006-01-31T23:59Z", "2006-01-31T00:00+23:59",
             "2006-01-31T23:59:59Z", "2006-01-31T23:59:59.9-05:30"}},
           {mismatch,
            {"", "206", "20066", " 2006", "2006-00", "2006-13", "2006-01-00", "2006-01-32",
             "2006-01-31T23:59", "2006-01-31T24:00Z", "2006-01-31T23:60Z", "2006-01-31T23:59:60Z",
             "2006-01-31T23:59:59.Z", "2006-01-31T23:59:59.99Z", "2006-01-31T23:59:59+24:00",
             "2006-01-31T23:59:59z", "2006-01-31 23:59Z"}}});
    const auto inNamespace = [](const std::string& element) {
        return inserted(element, element.substr(0, element.find_first_of(" /")),
                        " xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'");
    };
    check(parser, inNamespace,
          {{ACCEPTED,
            {"<RelationshipReference SourceId=' any text '/>",
             "<RelationshipsGroupReference SourceType='http://a/b'>c</RelationshipsGroupReference>"}},
           {"missing required attribute 'SourceId'", {"<RelationshipReference/>"}},
           {"missing required attribute 'SourceType'", {"<RelationshipsGroupReference/>"}},
           {"content model '(Format,Value)'", {"<SignatureTime/>"}}});
}

TEST(Schemas, xmlSignature) {
    SchemaParser parser(SIGNATURE_ORDER);
    const std::string methods =
        "<CanonicalizationMethod Algorithm='urn:c'/><SignatureMethod Algorithm='urn:s'/>";
    const std::string digest = "<DigestMethod Algorithm='urn:d'/><DigestValue>AAAA</DigestValue>";
    const std::string reference = "<Reference>" + digest + "</Reference>";
    const std::string value = "<SignatureValue>AA\n AA</SignatureValue>";
    const auto signature = [](const std::string& signedInfo, const std::string& rest) {
        return "<Signature xmlns='http://www.w3.org/2000/09/xmldsig#' Id='s'><SignedInfo>" + signedInfo +
               "</SignedInfo>" + rest + "</Signature>";
    };
    const auto withInfo = [&](const std::string& signedInfo) { return signature(signedInfo, value); };
    const auto withRest = [&](const std::string& rest) { return signature(methods + reference, rest); };
    const auto withTransform = [&](const std::string& content) {
        return withInfo(methods + "<Reference URI='#a' Id='r' Type=''><Transforms>" + content +
                        "</Transforms>" + digest + "</Reference>");
    };
    const auto withKey = [&](const std::string& content) {
        return withRest(value + "<KeyInfo>" + content + "</KeyInfo>");
    };
    const auto withObject = [&](const std::string& content) { return withRest(value + content); };
    const auto withTime = [&](const std::string& time) {
        return withObject("<Object><SignatureProperties><SignatureProperty Target='#s'>" +
                          signatureTime("YYYY", time) +
                          "</SignatureProperty></SignatureProperties></Object>");
    };
    check(parser, withInfo,
          {{ACCEPTED, {methods + reference + reference}},
           {"content model", {methods}},
           {"is not allowed for content model",
            {methods + "<Reference><DigestValue>AAAA</DigestValue></Reference>"}},
           {"missing required attribute 'Algorithm'", {"<CanonicalizationMethod/>"}},
           {"found for", {"<CanonicalizationMethod Algorithm=''><x xmlns='u'/></CanonicalizationMethod>"}},
           {"does not match",
            {"<CanonicalizationMethod Algorithm=''/><SignatureMethod Algorithm=''>"
             "<HMACOutputLength>long</HMACOutputLength></SignatureMethod>"}}});
    check(parser, withRest,
          {{"content model", {""}},
           {"is invalid Base64-encoded binary",
            {"<SignatureValue>A?AA</SignatureValue>", "<SignatureValue>AAA</SignatureValue>"}}});
    const std::string relationship =
        "<Transform Algorithm='a'><RelationshipReference xmlns='http://"
        "schemas.openxmlformats.org/package/2006/digital-signature'/></Transform>";
    check(parser, withTransform,
          {{ACCEPTED,
            {"<Transform Algorithm='a'>t<XPath>x</XPath><x xmlns='u' y=''><z/></x></Transform>",
             inserted(relationship, "<RelationshipReference", " SourceId='a'")}},
           {"missing required attribute 'Algorithm'", {"<Transform/>"}},
           {"missing required attribute 'SourceId'", {relationship}},
           {"content model", {""}}});
    check(
        parser, withKey,
        {{ACCEPTED,
          {"text<KeyName>a</KeyName><x xmlns='u'/><MgmtData/>",
           "<X509Data><X509Certificate>AAAA</X509Certificate><X509SubjectName/><X509IssuerSerial>"
           "<X509IssuerName/><X509SerialNumber>-1</X509SerialNumber></X509IssuerSerial></X509Data>",
           "<KeyValue><RSAKeyValue><Modulus>AA==</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue>",
           "<KeyValue><DSAKeyValue><P/><Q/><Y/><Seed/><PgenCounter/></DSAKeyValue></KeyValue>",
           "<PGPData><PGPKeyPacket/><x xmlns='u'/></PGPData>",
           "<PGPData><PGPKeyID/><PGPKeyPacket/></PGPData>",
           "<SPKIData><SPKISexp/><x xmlns='u'/><SPKISexp/></SPKIData>", "<RetrievalMethod URI='a'/>"}},
         {"content model",
          {"", "<X509Data/>", "<KeyValue><RSAKeyValue><Modulus>AA==</Modulus></RSAKeyValue></KeyValue>"}},
         {"is not allowed for content model", {"<KeyValue><DSAKeyValue><P/><Y/></DSAKeyValue></KeyValue>"}}});
    check(parser, withObject,
          {{ACCEPTED,
            {"<Object Id='o' MimeType='' Encoding=''>text<x xmlns=''/></Object><Object/>",
             "<Object><Manifest>" + reference + "</Manifest></Object>"}},
           {"is not unique", {"<Object Id='s'/>"}},
           {"NCName", {"<Object Id='1'/>"}},
           {"content model",
            {"<Object><Manifest/></Object>", "<Object><SignatureProperty Target=''/></Object>"}}});
    check(parser, withTime, {{ACCEPTED, {"2006"}}, {"does not match regular expression facet", {"206"}}});
}

} // namespace
