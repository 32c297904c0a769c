#include "signatures/SignatureDocuments.hpp"
#include "support/SignatureComparison.hpp"

namespace {

using namespace opc::test;

TEST(SignatureScanner, whatThisLibraryWritesIsRecognised) {
    const std::string key = piece(WRITTEN_SIGNATURE, "<KeyInfo>", "<Object");
    const auto x509 = [](const std::string& content) {
        return "<KeyInfo><X509Data><X509Certificate>" + content + "</X509Certificate></X509Data></KeyInfo>";
    };
    const std::string another = "</X509Certificate><X509Certificate>";
    const std::string signer = certificate("rsa:2048");
    const std::pair<std::string, std::string> changes[] = {
        {"", ""},
        {key, ""},
        {key, x509(signer)},
        {key, x509(signer + another + certificate("rsa:1024") + another + signer)},
        {R"( Id="Signature1")", ""},
        {R"(Id="Signature1")", R"(Id="Other")"},
        {R"(Id="Signature1")", R"(Id="SignatureHost")"},
        {R"(<pds:RelationshipReference SourceId="rId 1"/>)", ""},
        {"2005/06/RelationshipTransform", "2006/RelationshipTransform"},
        {R"(<Transform Algorithm="a/b"/>)", ""},
        {"</Transform></Transforms>", R"(</Transform><Transform Algorithm="a/b"/></Transforms>)"},
        {"</Transform>", R"(<pds:RelationshipReference SourceId="3"/></Transform>)"},
        // What is plain, but fails or is odd in what is made of it.
        {key, x509("AQID")},
        {key, x509(signer + another + "AQID")},
        {key, x509(certificate("rsa:3072"))},
        {"rsa-sha256", "rsa-unknown"},
        {"/a_b/c~1.xml", "/../a//b"},
    };
    SignatureComparison comparison;
    for (const auto& [from, to] : changes) {
        const auto document = toBytes(replaced(WRITTEN_SIGNATURE, from, to));
        EXPECT_TRUE(SignatureComparison::isRecognised(document)) << from << " -> " << to;
        EXPECT_EQ(comparison.findDifference(document), "");
    }
}

TEST(SignatureScanner, everyDoubtIsLeftToTheParser) {
    const std::pair<const char*, std::vector<const char*>> changes[] = {
        {R"(standalone="yes" )", {""}},
        {"<?xml", {" <?xml"}},
        {"<Signature ", {"<!-- --><Signature "}},
        {R"(Id="Signature1" xmlns)", {R"(xmlns:a="b" xmlns)"}},
        {R"(Id="Signature1")",
         {R"(Id="idPackageObject")", R"(Id="idSignatureTime")", R"(Id="1")", R"(Id="")"}},
        {R"(09/xmldsig#"><SignedInfo)", {R"(09/xmldsig"><SignedInfo)"}},
        {R"(<SignedInfo xmlns="http://www.w3.org/2000/09/xmldsig#">)", {"<SignedInfo>"}},
        {"c14n-20010315", {"c14n 20010315", "c14n#a#b"}},
        {R"(c14n-20010315"/>)", {R"(c14n-20010315" />)", R"(c14n-20010315"></CanonicalizationMethod>)"}},
        {"http://www.w3.org/TR/2001/REC-xml-c14n-20010315", {""}},
        {"#idPackageObject", {"#idOtherObject"}},
        {R"(#Object")", {R"(#Manifest")"}},
        {"AbC+/w==",
         {"", "AbC+/w", "AbC+/x==", "AbC+/U==", "AbCD=w==", "Ab C+/w==", "====", "Ab==", "Abd=", "AbC-/w=="}},
        {"BAUG", {"BAUG\n"}},
        {"BAUG</SignatureValue>", {"BAUG</SignatureValue><KeyInfo/>"}},
        {"AQAB</Exponent>", {"AQAB</Exponent> "}},
        {"</KeyValue>", {"</KeyValue><X509Data/>"}},
        {"<pds:RelationshipReference", {"text<pds:RelationshipReference"}},
        {"/><pds:RelationshipGroup", {"></pds:RelationshipReference><pds:RelationshipGroup"}},
        {"rId 1", {"", "r&amp;d", "a>b", "r\tb", "\xC3\xA9"}},
        {R"(<Transform Algorithm="a/b"/>)",
         {R"(<Transform Algorithm="a/b"><pds:RelationshipReference SourceId="1"/></Transform>)", "<XPath/>"}},
        {"/a_b/c~1.xml", {"a_b", "//a", "/a%zz", ""}},
        {"?ContentType=a", {"?contentType=a"}},
        {"?ContentType=a/b", {"?ContentType=", "?ContentType=a/b#c", ""}},
        {"hh:mmTZD", {"hh:mm:ssTZD"}},
        {"23:59:08Z", {"23:59:08+00:00", "24:00:08Z", "23:60:08Z", "23:59:60Z"}},
        {"2026-11-25", {"2026-13-25", "2026-00-25", "2026-11-32", "2026-11-00", "2026-02-29", "0000-02-01"}},
        {R"(Target="#Signature1")", {R"(Target="#")", R"(Target="Signature1")"}},
        {R"(<SignatureProperty Id="idSignatureTime" )", {"<SignatureProperty "}},
        {"</Object>", {R"(</Object><Object Id="other"/>)"}},
        {"</Signature>", {"</Signature>\n", ""}},
    };
    for (const auto& [from, replacements] : changes)
        for (const char* to : replacements)
            EXPECT_FALSE(SignatureComparison::isRecognised(toBytes(replaced(WRITTEN_SIGNATURE, from, to))))
                << from << " -> " << to;
    EXPECT_FALSE(SignatureComparison::isRecognised({}));
}

} // namespace
