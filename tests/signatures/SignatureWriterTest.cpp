#include "signatures/SignatureDocuments.hpp"
#include "signatures/document/SignatureComposer.hpp"
#include "signatures/document/SignatureElements.hpp"
#include "signatures/document/SignatureTrees.hpp"
#include "support/PackageContent.hpp"
#include "support/ShellCommand.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/Throws.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

#include <sstream>
#include <utility>

namespace {

using namespace opc::model;
using namespace opc::test;
using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;

X509Certificate certificateOf(const std::string& base64) {
    return X509Certificate(bedrock::crypto::utils::base64Decode(opc::toString(base64, false)));
}

Reference reference(const char16_t* uri, const char16_t* digestValue) {
    Reference result;
    result.referenceURI = URI(uri);
    result.digestMethod = u"http://www.w3.org/2001/04/xmlenc#sha256";
    result.digestValue = digestValue;
    return result;
}

class SignatureWriter : public SignatureDocument {
protected:
    SignatureWriter() {
        written.m_signatureId = u"1";
        written.m_canonicalizationMethod = u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315";
        written.m_signatureMethod = u"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256";
        written.m_signatureValueInXML = u"BAUG";
        written.m_keyValue = RSAKeyValue{0, u"AQIDBA==", u"AQAB"};
        Reference object = reference(u"#idPackageObject", u"AbC+/w==");
        object.referenceType = u"http://www.w3.org/2000/09/xmldsig#Object";
        written.m_content.signedInfoReferences = {object};
        Reference relationships = reference(u"/_rels/.rels?ContentType=a/b", u"AA==");
        relationships.transforms = {u"a/b"};
        relationships.relationshipReferences = {u"rId 1", u"2"};
        relationships.relationshipGroupReferences = {u"urn:'a"};
        written.m_content.manifestReferences = {
            reference(u"/a_b/c~1.xml?ContentType=application/vnd.a-b+xml", u"BwgJ"), relationships};
        written.m_content.signatureProperties = {
            {u"#Signature1", u"idSignatureTime", u"YYYY-MM-DDThh:mmTZD", u"2026-11-25T23:59:08Z"}};
    }

    DigitalSignatureData written;
};

TEST_F(SignatureWriter, writesEveryElementByteForByte) {
    EXPECT_EQ(write(written), WRITTEN_SIGNATURE);
}

TEST_F(SignatureWriter, writesWhatIsThereAndEscapesIt) {
    Reference types = reference(u"/_rels/a.xml.rels", u"AA==");
    types.referenceID = u"types";
    types.relationshipGroupReferences = {u"t:1&2", u"r\u00e9"};
    written.m_content.manifestReferences = {types};
    written.m_keyValue.reset();
    const std::string text = write(written);
    EXPECT_EQ(
        piece(text, "<Manifest>", "<DigestMethod"),
        R"(<Manifest><Reference Id="types" URI="/_rels/a.xml.rels"><Transforms>)"
        R"(<Transform Algorithm="http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform">)"
        R"(<pds:RelationshipGroupReference SourceType="t:1&amp;2"/>)"
        "<pds:RelationshipGroupReference SourceType=\"r\xC3\xA9\"/></Transform></Transforms>");
    EXPECT_EQ(text.find("<KeyInfo>"), std::string::npos);
}

TEST_F(SignatureWriter, writesTheKeyOrTheCertificates) {
    written.m_signatureParams = SignatureParams(DigestMethod::SHA256, SignatureMethod::RSA1024);
    written.setKeyValue(bedrock::crypto::generateRsaKeyPair(1024).getPublicKey());
    const std::string withKey = write(written);
    EXPECT_EQ(piece(withKey, "<KeyInfo>", "<Object"),
              "<KeyInfo><KeyValue><RSAKeyValue><Modulus>" + opc::toASCIIString(written.m_keyValue->modulus) +
                  "</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue></KeyInfo>");
    EXPECT_EQ(read(withKey).m_signatureParams.getSignatureMethod(), SignatureMethod::RSA1024);

    written.m_keyValue.reset();
    written.m_certificate = certificateOf(certificate("rsa:1024"));
    X509CertificateChain chain;
    chain.addCertificate(certificateOf(certificate("rsa:2048")));
    chain.addCertificate(certificateOf(certificate("rsa:3072")));
    written.m_certificateChain = chain;
    std::string x509Data = "<KeyInfo><X509Data>";
    for (const char* key : {"rsa:1024", "rsa:2048", "rsa:3072"})
        x509Data += "<X509Certificate>" + certificate(key) + "</X509Certificate>";
    EXPECT_EQ(piece(write(written), "<KeyInfo>", "<Object"), x509Data + "</X509Data></KeyInfo>");
}

TEST_F(SignatureWriter, whatIsComposedIsWhatXercesWrites) {
    written.m_certificate = certificateOf(certificate("rsa:1024"));
    Reference& both = written.m_content.manifestReferences.back();
    SignatureProperty& property = written.m_content.signatureProperties.front();
    std::u16string* const values[] = {&written.m_signatureId,
                                      &written.m_canonicalizationMethod,
                                      &written.m_signatureMethod,
                                      &both.referenceID,
                                      &written.m_signatureValueInXML,
                                      &written.m_keyValue->modulus,
                                      &both.referenceType,
                                      &written.m_keyValue->exponent,
                                      &both.relationshipReferences[0],
                                      &both.transforms[0],
                                      &both.digestMethod,
                                      &both.relationshipGroupReferences[0],
                                      &both.digestValue,
                                      &property.id,
                                      &property.target,
                                      &property.format};
    std::u16string printable;
    for (char16_t c = u' '; c <= u'~'; ++c)
        printable += c;
    const auto textOf = [](const OwnedDocument& document) {
        std::u16string text;
        XercesHelper::writeDocumentToString(XercesHelper::createWriter().get(), document.get(), text,
                                            XmlDeclaration::Omit);
        return opc::toUDEString(text);
    };
    std::string composed;
    std::string element;
    const auto isWhatXercesWrites = [&] {
        property.value = u"\u00e9"; // only Xerces writes it
        EXPECT_FALSE(composePlainSignature(written, composed));
        const std::string byXerces = replaced(write(written), "\xC3\xA9", "e");
        property.value = u"e";
        const bool isObjectPlain = composePlainPackageObject(written.m_content, element);
        EXPECT_TRUE(!isObjectPlain || element == textOf(buildPackageObject(written.m_content)));
        const bool isSignedInfoPlain = composePlainSignedInfo(written, element);
        EXPECT_TRUE(!isSignedInfoPlain || element == textOf(buildSignedInfo(written)));
        const bool isPlain = composePlainSignature(written, composed);
        EXPECT_EQ(write(written), byXerces);
        return isPlain && composed == byXerces;
    };
    EXPECT_TRUE(isWhatXercesWrites());
    for (std::u16string* const value : values) {
        *value += printable;
        EXPECT_TRUE(isWhatXercesWrites());
        for (const char16_t* other :
             {u"\t", u"\r\n", u"\u007f", u"\u0085", u"\u2028", u"\U0001F600", u"\x01"}) {
            const std::u16string plain = std::exchange(*value, *value + other);
            EXPECT_FALSE(composePlainSignature(written, composed)) << opc::toUDEString(*value);
            *value = plain;
        }
    }
    for (std::u16string* const value : values) {
        const std::u16string before = std::exchange(*value, u"");
        isWhatXercesWrites();
        *value = before;
    }
    for (auto* const list :
         {&written.m_content.manifestReferences, &written.m_content.signedInfoReferences}) {
        const auto before = std::exchange(*list, {});
        isWhatXercesWrites();
        *list = before;
    }
    written.m_content.signatureProperties.clear();
    EXPECT_FALSE(composePlainSignature(written, composed));
}

TEST_F(SignatureWriter, otherProgramsFindTheDocumentValid) {
    const auto validates = [this] {
        const TemporaryFolder folder;
        const std::string schemas = OPCMODEL_SCHEMAS;
        writeFile(folder / "both.xsd",
                  "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:import "
                  "namespace='http://www.w3.org/2000/09/xmldsig#' schemaLocation='" +
                      schemas +
                      "/xmldsig.xsd'/><xs:import namespace='http://schemas.openxmlformats.org/"
                      "package/2006/digital-signature' schemaLocation='" +
                      schemas + "/opc-dsig.xsd'/></xs:schema>");
        writeFile(folder / "sig.xml", write(written));
        const auto outcome =
            runInShell(folder.path(), "xmllint --noout --nonet --schema both.xsd sig.xml 2>&1");
        return outcome.status == 0 ? testing::AssertionSuccess()
                                   : testing::AssertionFailure() << outcome.output;
    };
    EXPECT_TRUE(validates());
    written.m_certificate = certificateOf(certificate("rsa:1024"));
    EXPECT_TRUE(validates());
    written.m_keyValue.reset();
    EXPECT_TRUE(validates());
    written.m_content.signatureProperties[0].value = u"tomorrow";
    EXPECT_FALSE(validates());
}

TEST_F(SignatureWriter, whatWasReadIsWrittenAsItWas) {
    written.m_keyValue.reset();
    written.m_certificate = certificateOf(certificate("rsa:2048"));
    const std::string document = write(written);
    DigitalSignatureData again = read(document);
    // Reading doesn't keep the texts of the time.
    again.m_content.signatureProperties = written.m_content.signatureProperties;
    EXPECT_EQ(write(again), document);

    std::ostringstream first, second;
    again.prettyPrint(first);
    read(write(again)).m_content.signatureProperties = written.m_content.signatureProperties;
    data->prettyPrint(second);
    EXPECT_EQ(first.str(), second.str());
    EXPECT_EQ(first.str().find("----------- Pretty Print of Digital Signature data --------------------\n"),
              0U);
    for (const char* text : {"Digest: SHA-256\n", "Key: RSA 2048\n", "BAUG", "rId 1", "urn:'a", "a/b",
                             "#Signature1", "BwgJ", "<SignedInfo"})
        EXPECT_NE(first.str().find(text), std::string::npos) << text;
}

TEST_F(SignatureWriter, refusesWhatItCanNotWriteBeforeAByteGoesOut) {
    for (const auto method : {SignatureMethod::NoKey, static_cast<SignatureMethod>(9)}) {
        written.m_signatureParams = SignatureParams(DigestMethod::SHA1, method);
        EXPECT_RAISES(opc::Exception, "Could not serialize key info element for this signature method.",
                      write(written));
        EXPECT_RAISES(opc::Exception, "Could not determine key info element for this signature method.",
                      written.setKeyValue({}));
    }
    written.m_signatureParams = SignatureParams();
    EXPECT_THROW(written.setKeyValue({1, 2, 3}), opc::Exception);
    EXPECT_EQ(written.m_keyValue->modulus, u"AQIDBA==") << "a bad key leaves the old one";

    const std::string good = write(written);
    for (const char16_t bad : {u'\u0001', u'\uFFFE', char16_t(0xD800)}) {
        DigitalSignatureData broken = written;
        broken.m_content.manifestReferences[0].digestValue += bad;
        Bytes bytes;
        EXPECT_THROW(
            {
                opc::ByteArrayOutAdaptor stream(bytes);
                serializer.writeSignature(broken, stream);
            },
            InvalidPartContent);
        EXPECT_TRUE(bytes.empty());
    }
    EXPECT_EQ(write(written), good) << "the writer is fit for the next document";
}

TEST_F(SignatureWriter, aFailedTextLeavesNothingBehind) {
    SignatureTrees trees;
    const auto readSignedInfo = [&trees] {
        const Bytes document = toBytes(USUAL_SIGNATURE);
        opc::ByteArrayInAdaptor stream(document);
        DigitalSignatureData read;
        trees.parse(stream, read);
        return read.m_content.signedInfoXML;
    };
    const std::u16string signedInfo = readSignedInfo();
    const auto broken = XercesHelper::createDocument();
    const XercesString space(u"http://www.w3.org/2000/09/xmldsig#");
    xercesc::DOMElement* const root =
        XercesHelper::appendElementNS(broken.get(), space, XercesString(u"SignedInfo"));
    XercesHelper::setElementText(XercesHelper::appendElementNS(root, space, XercesString(u"Reference")),
                                 u"\u0001");
    std::u16string text = u"before";
    EXPECT_RAISES(InvalidPartContent, "invalid or illegal XML character", trees.toText(root, text));
    EXPECT_EQ(text, u"before");
    EXPECT_EQ(readSignedInfo(), signedInfo) << "its namespace is declared again";
}

TEST_F(SignatureWriter, aSignatureIsNamedByItsIdentifier) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"7", u"sig7", u"/_xmlsignatures/sig7.xml"},
        {u"countersig", u"sigcountersig", u"/_xmlsignatures/sigcountersig.xml"},
        {u"", u"sig", u"/_xmlsignatures/sig.xml"},
    };
    for (const auto& [id, name, part] : cases) {
        DigitalSignatureData named;
        named.m_signatureId = id;
        EXPECT_EQ(named.getName(), name);
        EXPECT_EQ(named.computeSignaturePartName().toString(), part);
    }
    EXPECT_TRUE(written.getCertificate().empty());
    EXPECT_TRUE(written.getCertificateChain().getCertificates().empty());
}

} // namespace
