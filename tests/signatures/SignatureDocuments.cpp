#include "signatures/SignatureDocuments.hpp"

#include "support/OpenSslCommand.hpp"
#include "support/PackageContent.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>

#include <map>

namespace opc::test {

const std::string USUAL_SIGNATURE =
    R"(<Signature Id="Signature7" xmlns="http://www.w3.org/2000/09/xmldsig#"><SignedInfo>)"
    R"(<CanonicalizationMethod Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/>)"
    R"(<SignatureMethod Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/>)"
    R"(<Reference Type="http://www.w3.org/2000/09/xmldsig#Object" URI="#idPackageObject">)"
    R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue>AQID</DigestValue>)"
    R"(</Reference></SignedInfo><SignatureValue>BAUG</SignatureValue>)"
    R"(<Object Id="idPackageObject" xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature">)"
    R"(<Manifest><Reference URI="/a.xml?ContentType=text/xml"><!--part-->)"
    R"(<DigestMethod Algorithm="http://www.w3.org/2000/09/xmldsig#sha1"/><DigestValue>BwgJ</DigestValue>)"
    R"(</Reference></Manifest><SignatureProperties><SignatureProperty Id="idSignatureTime" Target="#Signature7">)"
    R"(<pds:SignatureTime><pds:Format>YYYY-MM-DDThh:mmTZD</pds:Format><pds:Value>2024-02-29T12:30Z</pds:Value>)"
    R"(</pds:SignatureTime></SignatureProperty></SignatureProperties></Object></Signature>)";

const std::string WRITTEN_SIGNATURE =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>)"
    R"(<Signature Id="Signature1" xmlns="http://www.w3.org/2000/09/xmldsig#">)"
    R"(<SignedInfo xmlns="http://www.w3.org/2000/09/xmldsig#">)"
    R"(<CanonicalizationMethod Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/>)"
    R"(<SignatureMethod Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/>)"
    R"(<Reference Type="http://www.w3.org/2000/09/xmldsig#Object" URI="#idPackageObject">)"
    R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue>AbC+/w==</DigestValue>)"
    "</Reference></SignedInfo><SignatureValue>BAUG</SignatureValue><KeyInfo><KeyValue><RSAKeyValue>"
    "<Modulus>AQIDBA==</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue></KeyInfo>"
    R"(<Object Id="idPackageObject" xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature">)"
    R"(<Manifest><Reference URI="/a_b/c~1.xml?ContentType=application/vnd.a-b+xml">)"
    R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue>BwgJ</DigestValue>)"
    R"(</Reference><Reference URI="/_rels/.rels?ContentType=a/b"><Transforms><Transform Algorithm="a/b"/>)"
    R"(<Transform Algorithm="http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform">)"
    R"(<pds:RelationshipReference SourceId="rId 1"/><pds:RelationshipReference SourceId="2"/>)"
    R"(<pds:RelationshipGroupReference SourceType="urn:'a"/></Transform></Transforms>)"
    R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue>AA==</DigestValue>)"
    R"(</Reference></Manifest><SignatureProperties><SignatureProperty Id="idSignatureTime" Target="#Signature1">)"
    "<pds:SignatureTime><pds:Format>YYYY-MM-DDThh:mmTZD</pds:Format><pds:Value>2026-11-25T23:59:08Z</"
    "pds:Value>"
    "</pds:SignatureTime></SignatureProperty></SignatureProperties></Object></Signature>";

std::string withKeyInfo(const std::string& document, const std::string& content) {
    return inserted(document, "</SignatureValue>", "<KeyInfo>" + content + "</KeyInfo>");
}

std::string unknownToSchema(const std::string& document) {
    const std::string root = R"(<Signature Id="Signature7" xmlns="http://www.w3.org/2000/09/xmldsig#">)";
    const std::string content = replaced(replaced(document, root, ""), "</Signature>", "");
    return R"(<Object Id="Signature7" xmlns="http://www.w3.org/2000/09/xmldsig#"><any xmlns="urn:any">)" +
           content + "</any></Object>";
}

std::string certificate(const std::string& key) {
    static std::map<std::string, std::string> made;
    std::string& text = made[key];
    if (text.empty()) {
        const OpenSslCommand openssl;
        openssl.run("req -x509 -nodes -subj /CN=Test -keyout key -outform DER -out certificate -newkey " +
                    key);
        text = toASCIIString(bedrock::crypto::utils::base64Encode(openssl.read("certificate")));
    }
    return text;
}

model::DigitalSignatureData& SignatureDocument::read(const std::string& document) {
    const Bytes bytes = toBytes(document);
    ByteArrayInAdaptor stream(bytes);
    data = std::make_unique<model::DigitalSignatureData>();
    serializer.readSignature(stream, *data);
    return *data;
}

std::string SignatureDocument::write(const model::DigitalSignatureData& source) {
    Bytes bytes;
    ByteArrayOutAdaptor stream(bytes);
    serializer.writeSignature(source, stream);
    return toText(bytes);
}

} // namespace opc::test
