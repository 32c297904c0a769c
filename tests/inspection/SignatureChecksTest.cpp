#include "RawZip.hpp"
#include "RulePairs.hpp"

#include "rules/RuleTable.hpp"
#include "support/TestCertificates.hpp"

#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

namespace opc::inspection {
namespace {

using namespace opc::test;

/// A package with a signature in the standard's form, as texts in which a test replaces something. Digests and value aren't
/// looked at.
struct SignedPackage {
    std::string contentTypes =
        R"(<Default Extension="sigs" ContentType="application/vnd.openxmlformats-package.digital-signature-origin"/>)"
        R"(<Default Extension="cer" ContentType="application/vnd.openxmlformats-package.digital-signature-certificate"/>)"
        R"(<Override PartName="/t.xml" ContentType="application/xml"/>)"
        R"(<Override PartName="/s/1.xml" ContentType="application/vnd.openxmlformats-package.digital-signature-xmlsignature+xml"/>)";
    std::string package =
        TO_DOCUMENT + std::string(R"(<Relationship Id="rT" Target="t.xml" Type="urn:a/thumbnail"/>)") +
        std::string(
            R"(<Relationship Id="rO" Target="s/o.sigs" Type="http://schemas.openxmlformats.org/package/2006/)"
            R"(relationships/digital-signature/origin"/>)");
    std::string origin =
        R"(<Relationship Id="rS" Target="1.xml" Type="http://schemas.openxmlformats.org/package/2006/)"
        R"(relationships/digital-signature/signature"/>)";
    std::string ofSignature =
        R"(<Relationship Id="rC" Target="1.cer" Type="http://schemas.openxmlformats.org/package/2006/)"
        R"(relationships/digital-signature/certificate"/>)";
    std::string originContent;
    std::string signature =
        R"(<Signature xmlns="http://www.w3.org/2000/09/xmldsig#" xmlns:p="http://schemas.openxmlformats.org/package/2006/digital-signature" Id="sig">)"
        R"(<SignedInfo><CanonicalizationMethod Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/>)"
        R"(<SignatureMethod Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/>)"
        R"(<Reference URI="#idPackageObject"><Transforms><Transform Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/></Transforms>)"
        R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue/></Reference>)"
        R"(<Reference URI="#other"/></SignedInfo><SignatureValue/>)"
        R"(<Object Id="idPackageObject"><Manifest>)"
        R"(<Reference URI="/word/document.xml?ContentType=application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml">)"
        R"(<DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/><DigestValue>QV5HEDN2/xFKjAb7GAWuUJKgFsOBaEADzzhOSNddodk=</DigestValue></Reference>)"
        R"(<Reference URI="/_rels/.rels?ContentType=application/vnd.openxmlformats-package.relationships+xml"><Transforms>)"
        R"(<Transform Algorithm="http://schemas.openxmlformats.org/package/2006/RelationshipTransform"><p:RelationshipReference SourceId="rId1"/></Transform>)"
        R"(<Transform Algorithm="http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments"/></Transforms></Reference>)"
        R"(</Manifest><SignatureProperties><SignatureProperty Id="idSignatureTime" Target="#sig"><p:SignatureTime>)"
        R"(<p:Format>YYYY-MM-DDThh:mm:ssTZD</p:Format><p:Value>2026-11-26T12:00:00Z</p:Value></p:SignatureTime>)"
        R"(</SignatureProperty></SignatureProperties></Object><Object Id="other"><a/></Object></Signature>)";

    void replace(const std::string& from, const std::string& to) {
        for (std::string* text : {&contentTypes, &package, &origin, &ofSignature, &originContent, &signature})
            if (const std::size_t place = text->find(from); place != std::string::npos) {
                text->replace(place, from.size(), to);
                return;
            }
        ADD_FAILURE() << "nowhere: " << from;
    }

    Bytes make() const {
        return packageWith({contentTypesWith(contentTypes), relationshipsWith(package),
                            stored("s/o.sigs", originContent),
                            relationshipsWith(origin, "s/_rels/o.sigs.rels"), stored("s/1.xml", signature),
                            stored("s/1.cer", "x"), stored("t.xml", "<x/>"),
                            relationshipsWith(ofSignature, "s/_rels/1.xml.rels")});
    }
};

/// Signs relationships by their type in place of their Id.
const char* const BY_TYPE =
    "<Transform Algorithm=\"http://schemas.openxmlformats.org/package/2006/RelationshipTransform\">"
    "<p:RelationshipsGroupReference SourceType=\"http://schemas.openxmlformats.org/officeDocument/2006/"
    "relationships/officeDocument\"/></Transform>";

InspectionOptions onlySignatureRules() {
    InspectionOptions options;
    const RuleRows rows = signatureRules();
    for (std::size_t i = 0; i < rows.count; ++i)
        options.only.emplace_back(rows.first[i].id);
    return options;
}

/// The rules that a package breaks, without what each signature tells (SEC-73, S6.3).
std::string broken(const SignedPackage& package) {
    InspectionOptions options = onlySignatureRules();
    options.never = {"SEC-73", "S6.3"};
    std::string ids;
    for (const Finding& finding : inspect(Archive(package.make()), options).findings)
        ids += (ids.empty() ? "" : " ") + std::string(finding.rule->id);
    return ids;
}

TEST(SignatureChecks, findWhatBreaksEachRuleAndNothingElse) {
    const struct {
        const char* rules; ///< that are broken
        const char* text;  ///< in the package
        const char* breaks;
        const char* close; ///< what breaks none in its place; null where there is nothing
    } cases[] = {
        {"M6.1", "Target=\"s/o.sigs\"", "Target=\"http://a/\" TargetMode=\"External\"",
         "Target=\"/S/O.sigs\""},
        {"M6.1", "digital-signature-origin", "x", "Digital-Signature-Origin"},
        {"M6.3", "Target=\"1.xml\"", "Target=\"2.xml\"", "Target=\"/s/1.xml\""},
        {"M6.3", "-xmlsignature+xml", "-other+xml", nullptr},
        {"M6.3", "Target=\"1.xml\"", "Target=\"../t.xml\"", nullptr},
        {"M6.4", "Target=\"1.cer\"", "Target=\"2.cer\"", "Target=\"../s/1.cer\""},
        {"M6.4 M6.4", "Target=\"1.cer\"", "Target=\"1.cer\" TargetMode=\"External\"", nullptr},
        {"M6.5", "URI=\"#other\"", "URI=\"file:///etc/hostname\"", nullptr},
        {"M6.5", "URI=\"#other\"", "URI=\"#xpointer(/)\"", nullptr},
        {"M6.5", "URI=\"#other\"", "URI=\"\"", nullptr},
        {"M6.5", "<a/>", "<a Id=\"other\"/>", "<a Id=\"another\"/>"},
        {"M6.6", "#idPackageObject\"><Transforms><Transform Algorithm=\"",
         "#idPackageObject\"><Transforms><Transform "
         "Algorithm=\"http://www.w3.org/TR/1999/REC-xslt-19991116\"/><Transform Algorithm=\"",
         "#idPackageObject\"><Transforms><Transform "
         "Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments\"/><Transform "
         "Algorithm=\""},
        {"M6.7", "<Object Id=\"other\"><a/>", "<Object Id=\"idPackageObject\"/><Object Id=\"other\">",
         "<Object Id=\"idpackageobject\"/><Object Id=\"other\"><a/>"},
        {"M6.7", "<Object Id=\"idPackageObject\">",
         "<Object Id=\"w\"><Object Id=\"idPackageObject\"/></Object><Object>", nullptr},
        {"M6.8", "</Manifest>", "</Manifest><Manifest/>", "</Manifest><!-- -->"},
        {"M6.8", "</Manifest>", "</Manifest><b xmlns=\"urn:b\"/>", nullptr},
        {"M6.9 SEC-71", "/word/document.xml?", "/word/other.xml?", "/Word/document.xml?"},
        {"M6.9 SEC-71", "/word/document.xml?", "http://a/word/document.xml?", nullptr},
        {"M6.10", "document.xml?ContentType=", "document.xml?contenttype=", nullptr},
        {"M6.10", "document.main+xml\"", "document.main+xml&amp;ContentType=a/b\"", nullptr},
        {"M6.10", "?ContentType=application/vnd.openxmlformats-officedocument", "?ContentType=a",
         "?ContentType=application%2Fvnd.openxmlformats-officedocument"},
        {"M6.11", "document.main+xml", "document.Main+xml", "document.main%2Bxml"},
        {"M6.11", "package.relationships+xml", "package.relationships", nullptr},
        {"M6.12", "20010315#WithComments", "20010315#Other", "20010315"},
        {"M6.14", "\"#sig\"", "\"#idPackageObject\"", "\"\""},
        {"M6.14", "Id=\"idSignatureTime\"", "Id=\"time\"", nullptr},
        {"M6.14", "<p:SignatureTime>", "<p:SignatureTime/><p:SignatureTime>", nullptr},
        {"M6.16", "URI=\"#idPackageObject\"", "URI=\"#other\"", nullptr},
        {"M6.16", "<Reference URI=\"#other\"/>", "<Reference URI=\"#idPackageObject\"/>", ""},
        {"M6.18", "/word/document.xml?", "/word/document.xml#a?", "/Word/Document.xml?"},
        {"M6.19", "<Reference URI=\"#other\"/>",
         "<Reference URI=\"#other\"><Transforms><Transform "
         "Algorithm=\"http://schemas.openxmlformats.org/package/2006/RelationshipTransform\"/>"
         "</Transforms></Reference>",
         "<Reference URI=\"#other\"><Transforms><Transform "
         "Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\"/>"
         "</Transforms></Reference>"},
        {"M6.23", "YYYY-MM-DDThh:mm:ssTZD", "ISO 8601", " YYYY-MM-DDThh:mm:ssTZD\n"},
        {"M6.24", "2026-11-26T12:00:00Z", "2026-11-26T12:00Z", "2026-11-26T12:00:00+01:00"},
        {"M6.24", "2026-11-26T12:00:00Z", "2026-11-26T12:00:00", nullptr},
        {"M6.25",
         "<Transform "
         "Algorithm=\"http://schemas.openxmlformats.org/package/2006/"
         "RelationshipTransform\"><p:RelationshipReference "
         "SourceId=\"rId1\"/></Transform>",
         "", BY_TYPE},
        {"M6.26", "<Transform Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments\"/>",
         "", "<Transform Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\"/>"},
        {"M6.27 SEC-71", "<p:RelationshipReference SourceId=\"rId1\"/>",
         "<p:RelationshipReference SourceId=\"rid1\"/>",
         "<p:RelationshipReference SourceId=\"rId1\"/><p:RelationshipReference SourceId=\"rT\"/>"},
        {"M6.32", "<Manifest>",
         "<Manifest xmlns:m=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" "
         "m:Ignorable=\"\">",
         "<Manifest xmlns:m=\"http://schemas.openxmlformats.org/markup-compatibility/2006\">"},
        {"M6.32", "<Object Id=\"idPackageObject\">",
         "<Object xmlns:m=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" m:Ignorable=\"\" "
         "Id=\"idPackageObject\">",
         nullptr},
        {"M6.30", "QV5HEDN2/xFKjAb7GAWuUJKgFsOBaEADzzhOSNddodk=", "AAAA",
         "\nQV5HEDN2/xFKjAb7GAWu\nUJKgFsOBaEADzzhOSNddodk= "},
        {"M6.30", "QV5HEDN2/xFKjAb7GAWuUJKgFsOBaEADzzhOSNddodk=", "?", nullptr},
        {"M6.3", "Target=\"1.xml\"", "Target=\"1.xml\" TargetMode=\"External\"", nullptr},
        {"M6.7", "Id=\"idPackageObject\"", "Id=\"p\"", nullptr},
        {"M6.34", "c14n-20010315\"/><SignatureMethod", "c14n11\"/><SignatureMethod",
         "c14n-20010315#WithComments\"/><SignatureMethod"},
        {"M6.35", "</Manifest>",
         "<Reference "
         "URI=\"/_rels/.rels?ContentType=application/"
         "vnd.openxmlformats-package.relationships+xml\"><Transforms>"
         "<Transform Algorithm=\"http://schemas.openxmlformats.org/package/2006/RelationshipTransform\"/>"
         "<Transform "
         "Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\"/></Transforms></Reference></"
         "Manifest>",
         nullptr},
        {"M6.35", "SourceId=\"rId1\"/></Transform>",
         "SourceId=\"rId1\"/></Transform>"
         "<Transform Algorithm=\"http://schemas.openxmlformats.org/package/2006/RelationshipTransform\"/>",
         "SourceId=\"rId1\"/><p:RelationshipReference SourceId=\"rT\"/></Transform>"},
        {"S6.5", "\"#other\"/></SignedInfo>", "\"#properties\"/></SignedInfo><b Id=\"properties\"/>",
         "\"#properties\" Type=\"http://uri.etsi.org/01903#SignedProperties\"/></SignedInfo><b "
         "Id=\"properties\"/>"},
        {"SEC-72", "</Signature>", "", "</Signature>\n"},
        {"SEC-72", "xmldsig#\" xmlns:p", "other#\" xmlns:p", nullptr},
        {"SEC-74", "xmldsig-more#rsa-sha256", "xmldsig#rsa-sha1", "xmldsig-more#ecdsa-sha384"},
        {"SEC-74", "xmlenc#sha256", "xmldsig#sha1", "xmlenc#sha512"},
        {"P1-3 P1-3", "<Relationship Id=\"rC\"",
         "<Relationship Id=\"r\" Type=\"http://schemas.openxmlformats.org/package/2006/relationships/"
         "digital-signature/origin\" Target=\"o.sigs\"/><Relationship Id=\"rC\"",
         "<Relationship Id=\"r\" Type=\"http://schemas.openxmlformats.org/package/2006/relationships/"
         "digital-signature/certificate\" Target=\"1.cer\"/><Relationship Id=\"rC\""},
        {"P1-3", "<Relationship Id=\"rC\"",
         "<Relationship Id=\"r\" Type=\"urn:a\" Target=\"../word/document.xml\"/><Relationship Id=\"rC\"",
         nullptr},
        {"SEC-71 SEC-71", "/thumbnail", "/other", nullptr},
        {"SEC-71 SEC-71", "Target=\"t.xml\"", "Target=\"t.xml\" TargetMode=\"External\"", nullptr},
    };
    EXPECT_EQ(broken({}), noted("no S6.1"));
    for (const auto& [rules, text, breaks, close] : cases) {
        SignedPackage package, other;
        package.replace(text, breaks);
        EXPECT_EQ(broken(package), noted(rules)) << text << " -> " << breaks;
        if (close != nullptr) {
            noteClose(rules);
            other.replace(text, close);
            EXPECT_EQ(broken(other), "") << text << " -> " << close;
        }
    }
}

TEST(SignatureChecks, tellTheFormOfASignature) {
    const struct {
        const char *rules, *text, *replacement;
    } cases[] = {
        {"SEC-73, S6.3", "", ""},
        {"SEC-73; no S6.3", "document.main+xml\"><DigestMethod",
         "document.main+xml\"><Transforms><Transform "
         "Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\"/></Transforms><DigestMethod"},
        {"no SEC-73", "digital-signature/signature", "digital-signature/other"},
    };
    InspectionOptions options;
    options.only = {"SEC-73", "S6.3"};
    for (const auto& [rules, text, replacement] : cases) {
        SignedPackage package;
        package.replace(text, replacement);
        std::string ids;
        for (const Finding& finding : inspect(Archive(package.make()), options).findings)
            ids += (ids.empty() ? "" : ", ") + std::string(finding.rule->id);
        EXPECT_EQ(ids, noted(rules));
    }
}

TEST(SignatureChecks, countOrigins) {
    for (const auto& [target, rules] :
         {std::pair("p.sigs", "SEC-72"), {"t.xml", "M6.1 S6.1 SEC-72 M6.1"}, {"S/o.sigs", ""}}) {
        SignedPackage second;
        second.replace("<Relationship Id=\"rO\"", std::string("<Relationship Id=\"r2\" Target=\"") + target +
                                                      "\" "
                                                      "Type=\"http://schemas.openxmlformats.org/package/2006/"
                                                      "relationships/digital-signature/origin\"/>"
                                                      "<Relationship Id=\"rO\"");
        EXPECT_EQ(broken(second), rules) << target;
    }
    SignedPackage filled;
    filled.originContent = "x";
    EXPECT_EQ(broken(filled), noted("S6.1"));
    SignedPackage empty;
    empty.replace("digital-signature/signature", "digital-signature/other");
    EXPECT_EQ(broken(empty), "SEC-72 M6.3");
}

/// What holds for all documents of the package's own, told once, whatever else finds it.
TEST(SignatureChecks, aFaultOfTwoConcernsIsToldOnce) {
    const struct {
        const char *rules, *text, *breaks;
    } cases[] = {
        {"", "", ""},
        {"M1.17", "<Signature ", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Signature "},
        {"M1.18", "<Signature ", "<!DOCTYPE a><Signature "},
        {"M1.20", "<SignedInfo>", "<SignedInfo><Other/>"},
        {"M1.21", "<SignedInfo>", "<SignedInfo xml:base=\"a\">"},
        {"SEC-72", "</Signature>", ""},
        {"M6.3", "Target=\"1.xml\"", "Target=\"1.xml\" TargetMode=\"External\""},
        {"M6.3", "Target=\"1.xml\"", "Target=\"../word/document.xml\""},
        {"SEC-33 SEC-72", "s/o.sigs", "s/p.sigs"}, // what was the origin is told, too
    };
    for (const auto& [rules, text, breaks] : cases) {
        SignedPackage package;
        package.replace(text, breaks);
        EXPECT_EQ(brokenRules(package.make(), OPC | SECURITY), rules) << breaks;
    }
}

/// A key says nothing about its owner; the certificate beside it must be its own.
TEST(SignatureChecks, compareTheKeyWithItsCertificate) {
    const auto keyInfo = [](std::size_t keyBits, std::size_t certificateBits) {
        CertificateRecipe recipe;
        recipe.rsaBits = certificateBits;
        const Identity identity = makeIdentity(recipe);
        recipe.rsaBits = keyBits;
        const auto modulus =
            bedrock::crypto::utils::base64Encode(makeIdentity(recipe).certificate.getModulus());
        return "<KeyInfo><KeyValue><RSAKeyValue><Modulus>" + toUDEString(modulus) +
               "</Modulus></RSAKeyValue></KeyValue><X509Data><X509Certificate>" +
               identity.certificate.getAsString() + "</X509Certificate></X509Data></KeyInfo>";
    };
    const auto validFor = [](const char* notBefore, const char* notAfter) {
        CertificateRecipe recipe;
        recipe.notBefore = notBefore;
        recipe.notAfter = notAfter;
        return "<KeyInfo><X509Data><X509Certificate>" + makeIdentity(recipe).certificate.getAsString() +
               "</X509Certificate></X509Data></KeyInfo>";
    };
    const Identity other = makeIdentity({});
    const auto named = [&other](const std::string& digest) {
        return "<KeyInfo><X509Data><X509Certificate>" + other.certificate.getAsString() +
               "</X509Certificate></X509Data></KeyInfo><Object><x:SigningCertificate "
               "xmlns:x=\"http://uri.etsi.org/01903/v1.3.2#\"><x:Cert><x:CertDigest><DigestMethod "
               "Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/><DigestValue>" +
               digest + "</DigestValue></x:CertDigest></x:Cert></x:SigningCertificate></Object>";
    };
    const auto fingerprint =
        bedrock::crypto::utils::base64Encode(bedrock::crypto::cryptopp::CryptoProvider()
                                                 .createDigestEngine(bedrock::crypto::DigestAlgorithm::SHA256)
                                                 ->computeDigest(other.certificate.getAsByteArray()));
    const struct {
        std::string keyInfo;
        const char* rules;
    } cases[] = {
        {named(toUDEString(fingerprint)), "no M6.21"},
        {named("AAAA"), "M6.21"},
        {validFor("20200101000000Z", "20261126120000Z"), "no SEC-74"}, // the time of the signature
        {validFor("20200101000000Z", "20261126115959Z"), "SEC-74"},
        {validFor("20261126120001Z", "20300101000000Z"), "SEC-74"},
        {keyInfo(2048, 2048), "no M6.21, SEC-74"},
        {keyInfo(2048, 1024), "M6.21"},
        {keyInfo(1024, 1024), "SEC-74"},
        {"<KeyInfo><X509Data><X509Certificate>AAAA</X509Certificate></X509Data></KeyInfo>", "SEC-74"},
        {"<KeyInfo><X509Data><X509Certificate>?</X509Certificate></X509Data></KeyInfo>", "SEC-74"},
    };
    for (const auto& [info, rules] : cases) {
        SignedPackage package;
        package.replace("<SignatureValue/>", "<SignatureValue/>" + info);
        EXPECT_EQ(broken(package), noted(rules)) << info.substr(0, 60);
    }
}

} // namespace
} // namespace opc::inspection
