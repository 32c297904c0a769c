#include "signatures/SignatureDocuments.hpp"
#include "support/Cases.hpp"
#include "support/Throws.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Errors.hpp>

#include <regex>

namespace {

using namespace opc::model;
using namespace opc::test;

class SignatureReader : public SignatureDocument {
protected:
    template <typename E>
    void expectRefusal(const std::string& document, const std::string& message) {
        EXPECT_RAISES(E, message, read(document)) << document;
    }
};

constexpr char VALUE[] = "</SignatureValue>";
constexpr char PART[] = "<!--part-->";

/// Replaces every `what` in the usual content by `replacement`; only the first one if `replacement` contains it.
struct Change {
    std::string what, replacement;

    std::string apply(std::string document = USUAL_SIGNATURE) const {
        document = replaced(document, what, replacement);
        return replacement.find(what) == std::string::npos ? replacedAll(document, what, replacement)
                                                           : document;
    }
};

Change keyInfoOf(const std::string& content) {
    return {VALUE, "</SignatureValue><KeyInfo>" + content + "</KeyInfo>"};
}

Change withCertificate(const std::string& text) {
    return keyInfoOf("<X509Data><X509Certificate>" + text + "</X509Certificate></X509Data>");
}

TEST_F(SignatureReader, refusesWhatBreaksTheForm) {
    forEachCase("signatures/malformed.txt", [this](const std::string& message, const std::string& what,
                                                   const std::string& replacement) {
        expectRefusal<InvalidPartContent>(unknownToSchema(Change{what, replacement}.apply()), message);
    });
    EXPECT_EQ(read(USUAL_SIGNATURE).m_signatureId, u"7") << "the reader is fit for the next document";
}

TEST_F(SignatureReader, checksInTheOrderOfItsSteps) {
    // Everything is wrong. Each repair shows the next failure.
    const auto failures = readCases("signatures/steps.txt", 3);
    for (auto first = failures.begin(); first != failures.end(); ++first) {
        std::string document = USUAL_SIGNATURE;
        for (auto failure = first; failure != failures.end(); ++failure)
            document = Change{failure->columns[1], failure->columns[2]}.apply(document);
        expectRefusal<InvalidPartContent>(unknownToSchema(document), first->columns[0]);
    }
}

TEST_F(SignatureReader, refusesWhatItDoesNotSupport) {
    const Change key3072 = withCertificate(certificate("rsa:3072"));
    const Change ellipticKey = withCertificate(certificate("ec -pkeyopt ec_paramgen_curve:P-256"));
    expectRefusal<NotImplemented>(Change{"xmldsig#Object", "xmldsig#SignatureProperties"}.apply(),
                                  "XMLDSig SignatureProperties element is not supported yet.");
    expectRefusal<NotImplemented>(
        Change{"http://www.w3.org/2000/09/xmldsig#Object", "http://uri.etsi.org/01903#SignedProperties"}
            .apply(),
        "XAsES SignedProperties element is not supported yet.");
    const char* const unknown = "URI provided is not supported as an algorithm.";
    expectRefusal<opc::Exception>(Change{"xmldsig-more#rsa-sha256", "xmldsig-more#ecdsa-sha256"}.apply(),
                                  unknown);
    expectRefusal<opc::Exception>(Change{"xmldsig-more#rsa-sha256", "xmlenc#sha256"}.apply(),
                                  "Internal error: Signature Method is not supported in algorithm map.");
    // The digest is checked before the key.
    expectRefusal<opc::Exception>(key3072.apply(Change{"xmldsig-more#rsa-sha256", "xmldsig-more#x"}.apply()),
                                  unknown);
    for (const Change& key : {key3072, ellipticKey})
        expectRefusal<opc::Exception>(key.apply(), "Input key size is not supported as a Signature Method.");
}

TEST_F(SignatureReader, theSchemaAndTheParserRefuseTheRest) {
    forEachCase("signatures/invalid.txt", [this](const std::string& what, const std::string& replacement) {
        EXPECT_THROW(read(Change{what, replacement}.apply()), InvalidPartContent);
    });
}

TEST_F(SignatureReader, badKeyMaterialKeepsItsOwnClass) {
    const std::string whole = certificate("rsa:2048");
    const std::string cutShort = whole.substr(0, whole.size() / 2 / 4 * 4);
    EXPECT_THROW(read(unknownToSchema(Change{"BAUG", "BA*G"}.apply())), bedrock::crypto::utils::Exception);
    EXPECT_THROW(read(unknownToSchema(withCertificate("A%B=").apply())), bedrock::crypto::utils::Exception);
    for (const std::string& text : {std::string("AQID"), cutShort, whole.substr(4)})
        EXPECT_THROW(read(withCertificate(text).apply()), bedrock::certificates::X509CertificateException);
}

TEST_F(SignatureReader, takesTheRecordsFromTheDocument) {
    const DigitalSignatureData& usual = read(USUAL_SIGNATURE);
    EXPECT_EQ(usual.getName(), u"sig7");
    EXPECT_EQ(usual.m_signatureValue, (std::vector<unsigned char>{4, 5, 6}));
    EXPECT_EQ(usual.m_namespace, u"http://www.w3.org/2000/09/xmldsig#");
    EXPECT_EQ(usual.m_signatureParams.getDigestMethod(), DigestMethod::SHA256);
    EXPECT_EQ(usual.m_signatureParams.getSignatureMethod(), SignatureMethod::NoKey);
    EXPECT_EQ(opc::convertTimeToString(usual.getSignedTime()), u"2024-02-29T12:30:00Z");
    EXPECT_FALSE(usual.m_signaturePartName);
    EXPECT_TRUE(usual.m_signedPartNames.empty());
    ASSERT_EQ(usual.m_content.signedInfoReferences.size(), 1U);
    EXPECT_EQ(usual.m_content.signedInfoReferences[0].referenceURI.getFragment(), u"idPackageObject");
    EXPECT_EQ(usual.m_content.signedInfoReferences[0].digestValue, u"AQID");
    ASSERT_EQ(usual.m_content.manifestReferences.size(), 1U);
    EXPECT_EQ(usual.m_content.manifestReferences[0].referenceURI.toString(), u"/a.xml?ContentType=text/xml");
    EXPECT_EQ(usual.m_content.manifestReferences[0].digestMethod, u"http://www.w3.org/2000/09/xmldsig#sha1");
    ASSERT_EQ(usual.m_content.signatureProperties.size(), 1U);
    EXPECT_EQ(usual.m_content.signatureProperties[0].target, u"#Signature7");
    EXPECT_EQ(usual.m_content.signatureProperties[0].value, u"") << "only the time is taken from it";

    // The texts that were signed: as they are in the document, with the namespace declarations that they need on
    // their own.
    const std::u16string& object = usual.m_objects.at(u"idPackageObject").XMLBytes;
    EXPECT_EQ(object.substr(0, object.find(u"<DigestMethod")),
              u"<Object xmlns=\"http://www.w3.org/2000/09/xmldsig#\" Id=\"idPackageObject\" "
              u"xmlns:pds=\"http://schemas.openxmlformats.org/package/2006/digital-signature\"><Manifest>"
              u"<Reference URI=\"/a.xml?ContentType=text/xml\"><!--part-->");
    const std::u16string& signedInfo = usual.m_content.signedInfoXML;
    EXPECT_EQ(signedInfo.substr(0, signedInfo.find(u"<SignatureMethod")),
              u"<SignedInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\"><CanonicalizationMethod "
              u"Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\"/>");
}

TEST_F(SignatureReader, namesAndTimesOfOthers) {
    forEachCase("signatures/names-and-times.txt",
                [this](const std::string& what, const std::string& replacement, const std::u16string& id,
                       const std::string& time) {
                    const DigitalSignatureData& other = read(Change{what, replacement}.apply());
                    EXPECT_EQ(other.m_signatureId, id);
                    EXPECT_EQ(opc::toUDEString(opc::convertTimeToString(other.m_signedTime)), time);
                    EXPECT_EQ(other.m_content.signatureProperties.size(), 1U);
                });
    read(inserted(USUAL_SIGNATURE, "<SignatureProperties>",
                  "<SignatureProperty Target='' Id='other'><any xmlns='urn:any'/></SignatureProperty>"));
    EXPECT_EQ(data->m_content.signatureProperties.size(), 2U) << "of another property anything goes";
}

TEST_F(SignatureReader, keysOfOthers) {
    const std::string x509Data = "<X509Data><X509SubjectName>CN=Test</X509SubjectName><X509Certificate>\n " +
                                 inserted(certificate("rsa:1024"), "MII", "\r\n\t ") +
                                 "\n</X509Certificate><X509Certificate>" + certificate("rsa:2048") +
                                 "</X509Certificate></X509Data>";
    const auto rsaKeyValue = [](std::size_t length) {
        return "<KeyValue><RSAKeyValue><Modulus>" + repeated("AAAA", length / 4) +
               "</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue>";
    };
    struct Case {
        std::string keyInfo;
        SignatureMethod method;
        std::size_t chained;
    };
    std::vector<Case> cases = {
        {"<KeyName>K</KeyName>", SignatureMethod::NoKey, 0},
        {"<MgmtData/><any xmlns='urn:any'/>", SignatureMethod::NoKey, 0},
        {x509Data, SignatureMethod::RSA1024, 1},
        {x509Data + rsaKeyValue(344), SignatureMethod::RSA2048, 0},
    };
    const std::pair<SignatureMethod, std::vector<std::size_t>> lengths[] = {
        {SignatureMethod::RSA1024, {172, 256}},
        {SignatureMethod::RSA2048, {260, 344, 512}},
        {SignatureMethod::RSA4096, {516, 684, 1000000}}};
    for (const auto& [method, ofModulus] : lengths)
        for (const std::size_t length : ofModulus)
            cases.push_back({rsaKeyValue(length), method, 0});
    for (const Case& c : cases) {
        const DigitalSignatureData& other = read(keyInfoOf(c.keyInfo).apply());
        EXPECT_EQ(other.m_signatureParams.getSignatureMethod(), c.method) << c.keyInfo;
        EXPECT_EQ(other.m_keyValue.has_value(), c.keyInfo.find("RSAKeyValue") != std::string::npos);
        EXPECT_EQ(other.getCertificate().empty(), c.chained == 0);
        EXPECT_EQ(other.getCertificateChain().getCertificates().size(), c.chained);
    }
    read(Change{"BAUG", "\n  BA\r\n\tUG  \n"}.apply());
    EXPECT_EQ(data->m_signatureValue, (std::vector<unsigned char>{4, 5, 6}));
}

TEST_F(SignatureReader, transformsOfOthers) {
    const std::string c14n = R"(<Transform Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/>)";
    const std::string relationships =
        "<pds:RelationshipReference SourceId='r2'/><pds:RelationshipGroupReference SourceType='t:2'/>"
        "<pds:RelationshipReference SourceId='r1'/><pds:RelationshipsGroupReference SourceType='t:1'/>"
        "<x:RelationshipReference xmlns:x='urn:any' SourceId='r0'/></Transform>";
    for (const std::string year : {"2005/06", "2006"}) {
        read(Change{PART, "<Transforms><Transform Algorithm='urn:unknown'/><Transform Algorithm='"
                          "http://schemas.openxmlformats.org/package/" +
                              year + "/RelationshipTransform'>" + relationships + c14n + "</Transforms>"}
                 .apply());
        const Reference& reference = data->m_content.manifestReferences.at(0);
        EXPECT_EQ(reference.transforms,
                  (std::vector<std::u16string>{u"urn:unknown",
                                               u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315"}));
        EXPECT_EQ(reference.relationshipReferences, (std::vector<std::u16string>{u"r2", u"r1"}));
        EXPECT_EQ(reference.relationshipGroupReferences, std::vector<std::u16string>{u"t:2"})
            << "the name of the published schema isn't read";
    }
}

TEST_F(SignatureReader, furtherObjectsAreKeptAsText) {
    const std::string others = "<Object Id='idXAdES'><x:QualifyingProperties "
                               "xmlns:x='http://uri.etsi.org/01903/v1.3.2#' Target='#s'>"
                               "<x:SignedProperties Id='idSigned'/></x:QualifyingProperties></Object>"
                               "<Object Id='idText'>some text</Object>";
    const std::string reference =
        R"(<Reference Type="http://www.w3.org/2000/09/xmldsig#Object" URI="#idText">)"
        R"(<DigestMethod Algorithm="urn:any"/><DigestValue>AQ==</DigestValue></Reference>)";
    read(inserted(inserted(USUAL_SIGNATURE, "</Object>", others), "</Reference>", reference));
    EXPECT_EQ(data->m_objects.size(), 3U);
    EXPECT_EQ(data->m_objects.at(u"idText").XMLBytes,
              u"<Object xmlns=\"http://www.w3.org/2000/09/xmldsig#\" Id=\"idText\">some text</Object>");
    EXPECT_EQ(data->m_content.signedInfoReferences.size(), 2U);
    EXPECT_EQ(data->m_content.manifestReferences.size(), 1U);
}

TEST_F(SignatureReader, aRootWithoutDefaultNamespaceHasThatOfXmlSignature) {
    const std::string space = R"( xmlns="http://www.w3.org/2000/09/xmldsig#")";
    std::string document = Change{"</Signature>", "</s:Signature>"}.apply(
        Change{"<Signature Id=\"Signature7\" xmlns=", "<s:Signature Id=\"Signature7\" xmlns:s="}.apply());
    for (const std::string child : {"<SignedInfo", "<SignatureValue", "<Object"})
        document = inserted(document, child, space);
    EXPECT_EQ(read(document).m_namespace, u"http://www.w3.org/2000/09/xmldsig#");
}

TEST_F(SignatureReader, aPrefixHidesTheElements) {
    std::string document = std::regex_replace(USUAL_SIGNATURE, std::regex("(</?)(?!pds:|/|!)"), "$1ds:");
    document = replaced(document, "xmlns=", "xmlns:ds=");
    expectRefusal<InvalidPartContent>(document, "XML signature: SignatureValue is not present.");
}

} // namespace
