#include "standard_signatures/SignedSample.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>

#include <openssl/ec.h>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

using Status = CryptographyAnswer::Status;

const std::string DSIG = "http://www.w3.org/2000/09/xmldsig#";
const std::string MORE = "http://www.w3.org/2001/04/xmldsig-more#";
const std::string PSS = "http://www.w3.org/2007/05/xmldsig-more#";
const std::string SHA256 = "http://www.w3.org/2001/04/xmlenc#sha256";
const std::string SHA1 = DSIG + "sha1";

Identity identityWith(const std::string& key) {
    return makeSigner(nullptr, [&key](CertificateRecipe& recipe) {
        if (key[0] == 'P')
            recipe.key = {EVP_EC_gen(key == "PSS" ? "P-256" : key.c_str()), EVP_PKEY_free};
        else if (key[0] == 'S')
            recipe.key = makePssKey();
        else
            recipe.rsaBits = std::stoul(key);
    });
}

SignatureRecipe::Change both(const SignatureRecipe::Change& first, const SignatureRecipe::Change& second) {
    return [first, second](std::string& text) {
        first(text);
        second(text);
    };
}

TEST(StandardVerification, SaysYesOnlyIfAllThreeAnswersAre) {
    SignedSample sample;
    EXPECT_FALSE(sample.verify().isYes());
    EXPECT_EQ(sample.verify().signatures.size(), 0U);
    sample.sign();
    const PackageVerification result = sample.verify();
    EXPECT_TRUE(result.isYes());
    ASSERT_EQ(result.signatures.size(), 1U);
    const VerifiedSignature& signature = result.signatures[0];
    EXPECT_EQ(signature.part, "/_xmlsignatures/sig1.xml");
    EXPECT_EQ(signature.name, "sig1");
    EXPECT_EQ(signature.cryptography.method, "RSA with SHA-256");
    EXPECT_EQ(signature.cryptography.keyBits, 2048U);
    EXPECT_EQ(signature.cryptography.references.size(), 7U);
    EXPECT_EQ(signature.coverage.signedParts, 3U);
    EXPECT_EQ(signature.coverage.signedRelationships, 4U);
    EXPECT_EQ(signature.coverage.externalTargets, 1U);
    EXPECT_EQ(signature.coverage.byCustom.size(), 2U);
    EXPECT_EQ(signature.claimedTime, "2026-11-26T10:00:00Z");

    VerificationPolicy policy;
    EXPECT_EQ(reasonsOf(sample.verify(policy)), "trust: Nobody said whom to trust\n");
    EXPECT_FALSE(sample.verify(policy).isYes());
    policy.trust.emplace();
    EXPECT_EQ(sample.verify(policy).signatures[0].trust.status, TrustAnswer::Status::NotTrusted);
    EXPECT_FALSE(sample.verify(policy).isYes());
}

TEST(StandardVerification, KnowsTheAlgorithms) {
    const std::string c14n = SignatureRecipe().canonicalization;
    const struct {
        std::string key, method, digest, canonicalization;
        Status status;
        std::string reason;
    } cases[] = {
        {"2048", MORE + "rsa-sha384", MORE + "sha384", c14n + "#WithComments", Status::Valid, ""},
        {"3072", MORE + "rsa-sha512", "http://www.w3.org/2001/04/xmlenc#sha512", c14n, Status::Valid, ""},
        {"2048", MORE + "rsa-sha256", SHA256, "http://www.w3.org/2001/10/xml-exc-c14n#", Status::Valid, ""},
        {"2048", MORE + "rsa-sha256", SHA256, "http://www.w3.org/2006/12/xml-c14n11", Status::Valid, ""},
        {"P-256", MORE + "ecdsa-sha256", SHA256, c14n, Status::Valid, ""},
        {"P-384", MORE + "ecdsa-sha384", SHA256, c14n, Status::Valid, ""},
        {"P-521", MORE + "ecdsa-sha512", SHA256, c14n, Status::Valid, ""},
        {"2048", PSS + "sha256-rsa-MGF1", SHA256, c14n, Status::Valid, ""},
        {"S", PSS + "sha512-rsa-MGF1", SHA256, c14n, Status::Valid, ""},
        {"2048", DSIG + "rsa-sha1", SHA256, c14n, Status::Weak, "The signature is RSA with SHA-1"},
        {"P-256", MORE + "ecdsa-sha1", SHA256, c14n, Status::Weak, "The signature is ECDSA with SHA-1"},
        {"1024", MORE + "rsa-sha256", SHA256, c14n, Status::Weak, "The RSA key has 1024 bits"},
        {"2048", MORE + "rsa-sha256", SHA1, c14n, Status::Weak, "7 of 7 references have a digest with SHA-1"},
        {"768", MORE + "rsa-sha256", SHA256, c14n, Status::Broken, "An RSA key of 768 bits isn't accepted"},
        {"P-224", MORE + "ecdsa-sha256", SHA256, c14n, Status::Broken,
         "The key is on a curve that isn't accepted"},
    };
    for (const auto& [key, method, digest, canonicalization, status, reason] : cases) {
        const Identity signer = identityWith(key);
        SignatureRecipe recipe;
        recipe.signer = &signer;
        recipe.method = method;
        recipe.digest = digest;
        recipe.canonicalization = canonicalization;
        SignedSample sample;
        sample.sign(recipe);
        VerificationPolicy policy;
        policy.trust.emplace().roots.addCertificate(signer.certificate);
        const PackageVerification result = sample.verify(policy);
        const CryptographyAnswer& answer = result.signatures.at(0).cryptography;
        EXPECT_EQ(answer.status, status) << key << " " << method << " " << reasonsOf(result);
        EXPECT_EQ(answer.reasons.empty() ? std::string() : answer.reasons[0].text, reason);
        EXPECT_EQ(result.isYes(), status == Status::Valid) << reasonsOf(result);
        policy.acceptWeak = true;
        EXPECT_EQ(sample.verify(policy).isYes(), status != Status::Broken);
    }
}

TEST(StandardVerification, AcceptsAMissingNullOnRequestOnly) {
    SignatureRecipe recipe;
    recipe.omitsNull = true;
    SignedSample sample;
    sample.sign(recipe);
    EXPECT_EQ(sample.verify().signatures[0].cryptography.reasons[0].code, Reason::Code::MissingNull);
    EXPECT_FALSE(sample.verify().isYes());
    VerificationPolicy policy = SignedSample::trusting();
    policy.acceptMissingNull = true;
    EXPECT_TRUE(sample.verify(policy).isYes());
    EXPECT_EQ(sample.verify(policy).signatures[0].cryptography.reasons[0].code,
              Reason::Code::NullNotRequired);
}

/// What changes a signature, and the reason that the answer must have.
TEST(StandardVerification, RefusesSignaturesThatAreBuiltToDeceive) {
    struct Case {
        std::string reason;
        std::function<void(SignatureRecipe&)> build;
    };
    const auto atLast = [](const std::string& from, const std::string& to) {
        return [from, to](SignatureRecipe& recipe) { recipe.changeAtLast = replacing(from, to); };
    };
    const auto inDocument = [](const std::string& from, const std::string& to) {
        return [from, to](SignatureRecipe& recipe) { recipe.changeDocument = replacing(from, to); };
    };
    const auto inManifest = [](const std::string& from, const std::string& to) {
        return [from, to](SignatureRecipe& recipe) { recipe.changeManifest = replacing(from, to); };
    };
    const std::string method = "'" + MORE + "rsa-sha256'";
    const std::string transform =
        "<Transform Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/></Transforms>";
    const std::string relsTransform = "http://schemas.openxmlformats.org/package/2006/RelationshipTransform";
    const Case cases[] = {
        {"Two elements have the Id idPackageObject",
         atLast("</Signature>", "<Object Id='idPackageObject'/></Signature>")},
        {"the document has a document type declaration, which isn't allowed (line 1)",
         atLast("\r\n<Signature", "<!DOCTYPE a>\r\n<Signature")},
        {"The root element isn't Signature",
         atLast("<Signature xmlns='" + DSIG + "'", "<Signature xmlns='u:a'")},
        {"The element SignedInfo doesn't belong into Signature",
         atLast("</Signature>", "<SignedInfo/></Signature>")},
        {"The reference #idPackageObject leads to nothing that may be signed",
         [](SignatureRecipe& recipe) {
             recipe.changeAtLast =
                 both(replacing("<Object Id='idPackageObject'>", "<Object><Object Id='idPackageObject'>"),
                      replacing("</Manifest></Object>", "</Manifest></Object></Object>"));
         }},
        {"The reference #idSignedProperties leads to nothing that may be signed",
         inDocument("http://uri.etsi.org/01903/v1.3.2#", "u:other")},
        {"The reference #no leads to nothing that may be signed",
         [](SignatureRecipe& recipe) {
             recipe.moreReferences = "<Reference URI='#no'><DigestMethod Algorithm='" + SHA256 +
                                     "'/><DigestValue>" + base64(std::vector<unsigned char>(32)) +
                                     "</DigestValue></Reference>";
         }},
        {"The reference doesn't lead to an element of the signature",
         inDocument("URI='#idPackageObject'", "URI=''")},
        {"The reference doesn't lead to an element of the signature",
         inDocument("URI='#idPackageObject'", "URI='file:///etc/hostname'")},
        {"The reference doesn't lead to an element of the signature",
         inDocument("URI='#idPackageObject'", "URI='#xpointer(/)'")},
        {"The signature signs no manifest of parts",
         [](SignatureRecipe& recipe) {
             recipe.changeDocument =
                 both(replacing("<Manifest>", "<a><Manifest>"), replacing("</Manifest>", "</Manifest></a>"));
         }},
        {"The signature signs more than one manifest", inDocument("</Manifest>", "</Manifest><Manifest/>")},
        {"The algorithm \"" + MORE + "hmac-sha256\" isn't accepted",
         inDocument(method, "'" + MORE + "hmac-sha256'")},
        {"The algorithm \"" + DSIG + "dsa-sha1\" isn't accepted",
         inDocument(method, "'" + DSIG + "dsa-sha1'")},
        {"The algorithm \"" + MORE + "rsa-md5\" isn't accepted", inDocument(method, "'" + MORE + "rsa-md5'")},
        {"The signature method has a parameter",
         inDocument(method + "/>", method + "><HMACOutputLength>0</HMACOutputLength></SignatureMethod>")},
        {"The algorithm \"" + MORE + "md5\" isn't accepted",
         inManifest("'" + SHA256 + "'", "'" + MORE + "md5'")},
        {"A digest has the wrong length", inManifest("<DigestValue>", "<DigestValue>AAAA")},
        {"The algorithm \"http://www.w3.org/TR/1999/REC-xslt-19991116\" isn't accepted",
         inManifest("'http://www.w3.org/TR/2001/REC-xml-c14n-20010315'",
                    "'http://www.w3.org/TR/1999/REC-xslt-19991116'")},
        {"The algorithm \"" + DSIG + "enveloped-signature\" isn't accepted",
         inDocument("<Transforms><Transform "
                    "Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/></Transforms><DigestMethod "
                    "Algorithm='" +
                        SHA256 + "'/><DigestValue>@2",
                    "<Transforms><Transform Algorithm='" + DSIG +
                        "enveloped-signature'/></Transforms><DigestMethod Algorithm='" + SHA256 +
                        "'/><DigestValue>@2")},
        {"Behind a relationships transform there isn't exactly one canonicalization",
         inManifest(transform, "</Transforms>")},
        {"Behind a relationships transform there isn't exactly one canonicalization",
         inManifest(transform, "<Transform Algorithm='" + relsTransform + "'/></Transforms>")},
        {"Canonical XML of a part isn't accepted",
         inManifest(
             "'><DigestMethod",
             "'><Transforms><Transform "
             "Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/></Transforms><DigestMethod")},
        {"The reference doesn't lead to a part", inManifest("'/word/document.xml?", "'word/document.xml?")},
        {"The reference doesn't lead to a part",
         inManifest("'/word/document.xml?", "'/word/../word/document.xml?")},
        {"The query of the reference isn't a content type", inManifest("?ContentType=", "?Type=")},
        {"#idPackageObject: It has changed since it was signed",
         atLast("?ContentType=image/png", "?ContentType=image/jpeg")},
        {"#idSignedProperties: It has changed since it was signed", atLast("2026-11-26", "2025-11-26")},
        {"The signature value wasn't made with this key, or what it signs has changed",
         atLast("<SignedInfo>", "<SignedInfo> ")},
        {"The signature value wasn't made with this key, or what it signs has changed",
         [](SignatureRecipe& recipe) {
             recipe.keyInfo = "<X509Data><X509Certificate>" +
                              base64(identityWith("3072").certificate.getAsByteArray()) +
                              "</X509Certificate></X509Data>";
             recipe.hasXades = false;
         }},
        {"The certificate isn't the one that the signer names",
         [](SignatureRecipe& recipe) {
             recipe.keyInfo = "<X509Data><X509Certificate>" +
                              base64(makeSigner(nullptr).certificate.getAsByteArray()) +
                              "</X509Certificate></X509Data>";
         }},
        {"The key isn't one for RSA with SHA-256",
         [](SignatureRecipe& recipe) {
             recipe.keyInfo = "<X509Data><X509Certificate>" +
                              base64(identityWith("P-256").certificate.getAsByteArray()) +
                              "</X509Certificate></X509Data>";
             recipe.hasXades = false;
         }},
        {"The signature names a key that isn't the one of its certificate",
         atLast("<X509Data>", "<KeyValue><RSAKeyValue><Modulus>" +
                                  base64(std::vector<unsigned char>(256, 0xFF)) +
                                  "</Modulus><Exponent>AQAB</Exponent></RSAKeyValue></KeyValue><X509Data>")},
        {"The signature has a key that can't be used: The RSA key can't be used.",
         atLast("<X509Data>", "<KeyValue><RSAKeyValue><Modulus>" +
                                  base64(std::vector<unsigned char>(256, 0xFF)) +
                                  "</Modulus><Exponent>AQ==</Exponent></RSAKeyValue></KeyValue><X509Data>")},
        {"The signature has too many certificates",
         atLast("<X509Data>", "<X509Data>" + repeated("<X509Certificate>AA==</X509Certificate>", 20))},
        {"The signature names a certificate without its digest",
         inDocument("</xd:CertDigest>", "</xd:CertDigest><xd:CertDigest/>")},
        {"No certificate of the signature can be read", atLast("<X509Certificate>", "<X509Certificate>AAAA")},
        {"The element X509Certificate isn't Base64", atLast("<X509Certificate>", "<X509Certificate>%")},
        {"Elements are nested deeper than 100",
         atLast("</Signature>",
                "<Object>" + repeated("<a>", 100) + repeated("</a>", 100) + "</Object></Signature>")},
        {"/word/styles.xml: The manifest names the part twice",
         [](SignatureRecipe& recipe) {
             recipe.changeManifest = [](std::string& text) {
                 const std::size_t at = text.find("<Reference URI='/word/styles.xml");
                 text += text.substr(at, text.find("</Reference>", at) + 12 - at);
             };
         }},
        {"/word/no.xml: The part isn't in the package", inManifest("'/word/styles.xml", "'/word/no.xml")},
        {"/word/styles.xml: Its content type is application/xml, and it was signed as text/xml",
         inManifest("styles.xml?ContentType=application/xml", "styles.xml?ContentType=text/xml")},
        {"/word/_rels/document.xml.rels: A signed relationship is missing",
         inManifest("<mdssi:RelationshipReference SourceId='rId2'/>",
                    "<mdssi:RelationshipReference SourceId='rId3'/>")},
        {"/word/_rels/document.xml.rels: It has changed since it was signed",
         inManifest("<mdssi:RelationshipReference SourceId='rId2'/>", "")},
        {"/docProps/core.xml: The relationships transform is about another kind of part",
         inManifest(
             "/_rels/.rels?ContentType=application/vnd.openxmlformats-package.relationships+xml",
             "/docProps/core.xml?ContentType=application/vnd.openxmlformats-package.core-properties+xml")},
    };
    for (const Case& one : cases) {
        SignatureRecipe recipe;
        one.build(recipe);
        SignedSample sample;
        sample.sign(recipe);
        const PackageVerification result = sample.verify();
        EXPECT_FALSE(result.isYes()) << one.reason;
        EXPECT_EQ(result.signatures.at(0).cryptography.status, Status::Broken) << one.reason;
        EXPECT_NE(reasonsOf(result).find(one.reason), std::string::npos) << one.reason << "\nin\n"
                                                                         << reasonsOf(result);
    }
}

/// What changes the package behind the signature's back.
TEST(StandardVerification, NoticesEachChangeOfThePackage) {
    const std::string base = "http://schemas.openxmlformats.org/package/2006/relationships/";
    const std::string evil = "<Relationship Id='rIdEvil' Target='evil.xml' Type='";
    const std::u16string document = u"/word/_rels/document.xml.rels";
    const struct {
        std::string reason;
        std::function<void(SignedSample&)> change;
    } cases[] = {
        {"/word/document.xml: It has changed since it was signed",
         [](SignedSample& it) { it.replace(u"/word/document.xml", "content", "Content"); }},
        {"/word/styles.xml: The part isn't in the package",
         [](SignedSample& it) { it.store.removePart(u"/word/styles.xml"); }},
        {"/word/styles.xml: Its content type is unknown, and it was signed as application/xml",
         [](SignedSample& it) {
             it.replaceContentTypes(
                 "</Types>", "<Override PartName='/word/STYLES.xml' ContentType='text/plain'/></Types>");
         }},
        {"/word/styles.xml: Two content types are given for xml",
         [](SignedSample& it) {
             it.replaceContentTypes("</Types>",
                                    "<Default Extension='XML' ContentType='text/plain'/></Types>");
         }},
        {"problem: The element Choice doesn't belong into the content types",
         [](SignedSample& it) { it.replaceContentTypes("</Types>", "<Choice/></Types>"); }},
        {"gap: /word/document.xml rIdEvil the relationship isn't signed",
         [&](SignedSample& it) {
             it.replace(document, "</Relationships>", evil + "u:a'/></Relationships>");
         }},
        {"gap: /word/evil.xml its content isn't signed",
         [](SignedSample& it) { it.store.setPart(u"/word/evil.xml", {}); }},
        {"gap: /word/document.xml rIdEvil the relationship isn't signed, and leads out of the package",
         [&](SignedSample& it) {
             it.replace(document, "</Relationships>", evil + "u:a' TargetMode='External'/></Relationships>");
         }},
        {"/word/_rels/document.xml.rels: Two relationships have the Id rId2",
         [&](SignedSample& it) {
             it.replace(document, "</Relationships>",
                        "<Relationship Id='rId2' Type='u:a' Target='b'/></Relationships>");
         }},
        {"/word/_rels/document.xml.rels: The element a doesn't belong there",
         [&](SignedSample& it) {
             it.replace(document, "</Relationships>", "<a xmlns='u:a'/></Relationships>");
         }},
        {"/word/_rels/document.xml.rels: It has changed since it was signed",
         [&](SignedSample& it) { it.replace(document, "a&amp;b", "a&amp;c"); }},
        {"/word/_rels/document.xml.rels: It has changed since it was signed",
         [&](SignedSample& it) { // in canonical form
             SignatureRecipe recipe;
             recipe.changeManifest = [&](std::string& text) {
                 text.erase(text.find("<Reference URI='/word/_rels"));
                 text += it.canonicalReferenceTo(document);
             };
             it.sign(recipe);
             it.replace(document, "</Relationships>", evil + "u:a'/></Relationships>");
         }},
        {"gap: / rIdEvil the relationship isn't signed\ngap: / more than one relationship leads to a main "
         "document",
         [&](SignedSample& it) {
             it.replace(u"/_rels/.rels", "</Relationships>",
                        evil + "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
                               "OfficeDocument'/></Relationships>");
         }},
        {"gap: /word/styles.xml its content isn't signed", // a relationship that needn't be signed excuses no part of the content
         [&](SignedSample& it) {
             SignatureRecipe recipe;
             recipe.changeManifest = [](std::string& text) {
                 const std::size_t at = text.find("<Reference URI='/word/styles.xml");
                 text.erase(at, text.find("</Reference>", at) + 12 - at);
             };
             it.sign(recipe);
             it.replace(u"/_rels/.rels", "</Relationships>",
                        "<Relationship Id='t' Target='word/styles.xml' Type='" + base +
                            "metadata/thumbnail'/></Relationships>");
         }},
        {"gap: /word/document.xml t the relationship isn't signed", // only the package itself has such
         [&](SignedSample& it) {
             it.replace(document, "</Relationships>",
                        "<Relationship Id='t' Target='x.png' Type='" + base +
                            "metadata/thumbnail'/></Relationships>");
         }},
        {"gap: /docProps/t.png its content isn't signed", // other formats show it in their pages
         [&](SignedSample& it) {
             SignatureRecipe recipe;
             recipe.changeManifest = [](std::string& text) {
                 const std::size_t at = text.find("<Reference URI='/_rels/.rels");
                 text.erase(at, text.find("</Reference>", at) + 12 - at);
             };
             it.sign(recipe);
             it.replace(u"/_rels/.rels", "officeDocument'", "fixedrepresentation'");
             it.replace(u"/_rels/.rels", "</Relationships>",
                        "<Relationship Id='t' Target='docProps/t.png' Type='" + base +
                            "metadata/thumbnail'/></Relationships>");
             it.store.setPart(u"/docProps/t.png", toBytes("\x89PNG\r\n\x1A\n"));
         }},
        {"problem: It has the content type of a signature, and no relationship leads to it",
         [](SignedSample& it) { it.store.setPart(u"/_xmlsignatures/sig2.xml", {}); }},
        {"gap: /word/a.zip it has no content type",
         [](SignedSample& it) { it.store.setPart(u"/word/a.zip", {}); }},
        {"gap: /word/_rels/styles.xml.rels its relationships can't be told: "
         "the document has a document type declaration, which isn't allowed (line 1)",
         [](SignedSample& it) {
             it.store.setPart(u"/word/_rels/styles.xml.rels", toBytes("<!DOCTYPE a><a/>"));
         }},
        {"invalid document structure (line 1, column 1)", // another signature that says nothing
         [&](SignedSample& it) {
             it.store.setPart(u"/docProps/sig3.xml", {});
             it.replace(u"/_xmlsignatures/_rels/origin.sigs.rels", "</Relationships>",
                        "<Relationship Id='x' Target='/docProps/sig3.xml' Type='" + base +
                            "digital-signature/signature'/></Relationships>");
         }},
    };
    for (const auto& [reason, change] : cases) {
        SignedSample sample;
        sample.sign();
        change(sample);
        const PackageVerification result = sample.verify();
        EXPECT_FALSE(result.isYes()) << reason;
        EXPECT_NE(reasonsOf(result).find(reason), std::string::npos) << reason << "\nin\n"
                                                                     << reasonsOf(result);
    }
}

/// What leaves the meaning as it was.
TEST(StandardVerification, AllowsWhatChangesNothing) {
    const std::function<void(SignedSample&)> changes[] = {
        [](SignedSample& it) { it.replace(u"/docProps/core.xml", "<core", "<!--c--><core"); },
        [](SignedSample& it) {
            it.replace(u"/word/_rels/document.xml.rels", "<Relationship ",
                       "<!--c-->\r\n <Relationship TargetMode='Internal' ");
        },
        [](SignedSample& it) { it.replaceContentTypes("<Override", "<!--c--><Override"); },
        [](SignedSample& it) { it.store.setPart(u"/word/_rels/styles.xml.rels", relationships("")); },
        [](SignedSample& it) { it.sign({}, u"/_xmlsignatures/sig2.xml"); },
        [](SignedSample& it) { // without Xades, and with a key that is repeated
            SignatureRecipe recipe;
            recipe.hasXades = false;
            it.sign(recipe);
        },
        [](SignedSample& it) { // a comment in the signature, which the canonical form leaves out
            SignatureRecipe recipe;
            recipe.changeAtLast = replacing("<Manifest>", "<!--c--><Manifest>");
            it.sign(recipe);
        },
        [](SignedSample& it) { // objects that needn't be signed
            SignatureRecipe recipe;
            recipe.changeAtLast =
                replacing("</Signature>",
                          "<Object Id='o'>\n<QualifyingProperties xmlns='http://uri.etsi.org/01903/v1.3.2#'>"
                          "<UnsignedProperties "
                          "xmlns='http://uri.etsi.org/19132/v1.1.1#'/></QualifyingProperties></Object>"
                          "<Object><TimeStamp "
                          "xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'/>"
                          "</Object></Signature>");
            it.sign(recipe);
        },
        [](SignedSample& it) { // a kind of key that isn't known, beside a certificate
            SignatureRecipe recipe;
            recipe.changeAtLast = replacing(
                "<X509Data>", "<KeyValue><ECDSAKeyValue "
                              "xmlns='http://www.w3.org/2001/04/xmldsig-more#'/></KeyValue>"
                              "<DerivedKey xmlns='http://www.w3.org/2007/05/xmldsig-more#'/>"
                              "<EncryptedKey xmlns='http://www.w3.org/2001/04/xmlenc#'/><X509Data>");
            it.sign(recipe);
        },
        [](SignedSample& it) { // the keys and pieces of objects are signed, too
            SignatureRecipe recipe;
            recipe.moreObjects =
                "<Object Id='object'><SignatureProperties Id='all'><SignatureProperty "
                "Id='one' Target='#object'>a</SignatureProperty></SignatureProperties></Object>";
            recipe.changeDocument = both(replacing("<KeyInfo>", "<KeyInfo Id='keys'>"),
                                         replacing("<Manifest>", "<Manifest Id='manifest'>"));
            recipe.alsoSigned = {"keys", "manifest", "object", "all", "one"};
            it.sign(recipe);
        },
        [](SignedSample& it) { // a certificate of the chain that can't be read
            SignatureRecipe recipe;
            recipe.changeAtLast =
                replacing("</X509Data>", "<X509Certificate>AAAA</X509Certificate></X509Data>");
            it.sign(recipe);
        },
        [](SignedSample& it) { // the first XAdES has elements of its own for digests
            SignatureRecipe recipe;
            recipe.changeDocument = [](std::string& text) {
                const std::size_t begin = text.find("<xd:CertDigest>");
                const std::size_t end = text.find("</xd:CertDigest>");
                const std::string digest = text.substr(begin, end - begin);
                text.replace(
                    begin, end - begin,
                    replacedAll(replacedAll(digest, "<Digest", "<xd:Digest"), "</Digest", "</xd:Digest"));
            };
            it.sign(recipe);
        },
        [](SignedSample&
               it) { // the whole relationships part in canonical form, which goes on when it is written otherwise
            const std::u16string part = u"/word/_rels/document.xml.rels";
            SignatureRecipe recipe;
            recipe.changeManifest = [&](std::string& text) {
                text.erase(text.find("<Reference URI='/word/_rels"));
                text += it.canonicalReferenceTo(part);
            };
            it.sign(recipe);
            it.replace(part, "<Relationship ", "<!--c--><Relationship   ");
        },
        [](SignedSample& it) { // the whole relationships part by its octets
            SignatureRecipe recipe;
            recipe.changeManifest = [&it](std::string& text) {
                text.erase(text.find("<Reference URI='/word/_rels"));
                text += it.referenceTo(u"/word/_rels/document.xml.rels",
                                       "application/vnd.openxmlformats-package.relationships+xml");
            };
            it.sign(recipe);
        },
    };
    for (const auto& change : changes) {
        SignedSample sample;
        sample.sign();
        change(sample);
        const PackageVerification result = sample.verify();
        EXPECT_TRUE(result.isYes()) << &change - changes << "\n" << reasonsOf(result);
    }
}

/// Verifies a package with the same signature again and again.
PackageVerification verifyCopies(const SignatureRecipe& recipe, int count) {
    SignedSample sample;
    sample.sign(recipe);
    std::string toSignatures;
    for (int i = 1; i <= count; ++i) {
        const std::string name = "sig" + std::to_string(i) + ".xml";
        toSignatures += "<Relationship Id='r" + std::to_string(i) + "' Target='" + name +
                        "' Type='http://schemas.openxmlformats.org/package/2006/relationships/"
                        "digital-signature/signature'/>";
        sample.store.setPart(u"/_xmlsignatures/" + std::u16string(name.begin(), name.end()),
                             sample.store.partBytes(SignedSample::SIGNATURE));
    }
    sample.store.setPart(u"/_xmlsignatures/_rels/origin.sigs.rels", relationships(toSignatures));
    return sample.verify();
}

/// What each of many signatures costs is bounded, and so is what all together cost.
TEST(StandardVerification, BoundsTheWorkOnAllSignatures) {
    SignatureRecipe manyKeys;
    manyKeys.hasXades = false;
    manyKeys.keyInfo =
        repeated("<X509Data><X509Certificate>" + base64(identityWith("P-256").certificate.getAsByteArray()) +
                     "</X509Certificate></X509Data>",
                 20);
    const std::string tooManyKeys = "The signatures of the package have too many keys";
    EXPECT_EQ(reasonsOf(verifyCopies(manyKeys, 10)).find(tooManyKeys), std::string::npos);
    EXPECT_NE(reasonsOf(verifyCopies(manyKeys, 11)).find(tooManyKeys), std::string::npos);

    SignatureRecipe manyNodes;
    manyNodes.moreObjects = "<Object Id='big'>" + repeated("<a/>", 100000) + "</Object>";
    manyNodes.moreReferences =
        repeated("<Reference URI='#big'><DigestMethod Algorithm='http://www.w3.org/2001/04/xmlenc#sha256'/>"
                 "<DigestValue>" +
                     base64(Bytes(32)) + "</DigestValue></Reference>",
                 30);
    const std::string tooMuch = "The signatures of the package need too much digesting";
    EXPECT_EQ(reasonsOf(verifyCopies(manyNodes, 2)).find(tooMuch), std::string::npos);
    EXPECT_NE(reasonsOf(verifyCopies(manyNodes, 3)).find(tooMuch), std::string::npos);

    SignatureRecipe manyStamps;
    manyStamps.moreObjects =
        "<Object><TimeStamp xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'>" +
        repeated("<EncodedTime>AAAA</EncodedTime>", 16) + "</TimeStamp></Object>";
    const PackageVerification result = verifyCopies(manyStamps, 7);
    EXPECT_EQ(result.signatures.at(5).trust.timeStampFailure, "it isn't a time stamp token");
    EXPECT_EQ(result.signatures.at(6).trust.timeStampFailure, "the signatures of the package have too many");
}

/// It reads no more of them, whether they are accepted or not.
TEST(StandardVerification, BoundsTheBytesOfAllRelationships) {
    SignedSample sample;
    sample.sign();
    const Bytes large = relationships(repeated("<!--" + std::string(std::size_t{2} << 20U, '.') + "-->", 8));
    for (const std::u16string name : {u"1", u"2", u"3", u"4", u"5"})
        sample.store.setPart(u"/word/_rels/" + name + u".xml.rels", large);
    EXPECT_NE(reasonsOf(sample.verify())
                  .find("5.xml.rels its relationships can't be told: "
                        "The package has too many relationships"),
              std::string::npos)
        << reasonsOf(sample.verify());
}

TEST(StandardVerification, FindsSignaturesInOtherPlaces) {
    SignedSample sample;
    sample.sign();
    const auto move = [&sample](const std::u16string& from, const std::u16string& to) {
        sample.store.setPart(to, sample.store.partBytes(from));
        sample.store.removePart(from);
    };
    move(SignedSample::SIGNATURE, u"/signatures/elsewhere/xml/my-signature.psdsxs");
    move(u"/_xmlsignatures/origin.sigs", u"/signatures/elsewhere/origin.sigs");
    move(u"/_xmlsignatures/_rels/origin.sigs.rels", u"/signatures/elsewhere/_rels/origin.sigs.rels");
    sample.replaceContentTypes("/_xmlsignatures/sig1.xml", "/signatures/elsewhere/xml/my-signature.psdsxs");
    sample.replace(u"/_rels/.rels", "_xmlsignatures/", "signatures/elsewhere/");
    sample.replace(u"/signatures/elsewhere/_rels/origin.sigs.rels", "sig1.xml", "xml/my-signature.psdsxs");
    const PackageVerification result = sample.verify();
    EXPECT_TRUE(result.isYes()) << reasonsOf(result);
    EXPECT_EQ(result.signatures.at(0).name, "my-signature");
}

/// The signature itself names no key: the certificate stands in a part of its own, or is one that the caller trusts.
TEST(StandardVerification, FindsTheKeyElsewhere) {
    SignatureRecipe recipe;
    recipe.keyInfo = "<KeyName>k</KeyName><RetrievalMethod URI='http://127.0.0.1:1/'/>";
    SignedSample sample;
    sample.sign(recipe);
    const auto isYes = [&sample](const std::function<void(TrustPolicy&)>& trust) {
        VerificationPolicy policy;
        trust(policy.trust.emplace());
        const PackageVerification result = sample.verify(policy);
        EXPECT_TRUE(result.isYes() || reasonsOf(result).find("The signature names no key") == 0);
        return result.isYes();
    };
    const auto& certificate = SignedSample::usualSigner().certificate;
    const Identity other = identityWith("3072");
    EXPECT_FALSE(isYes([](TrustPolicy&) {}));
    EXPECT_FALSE(isYes([&](TrustPolicy& trust) { trust.roots.addCertificate(other.certificate); }));
    EXPECT_FALSE(isYes([&](TrustPolicy& trust) { trust.publicKeys = {other.certificate.getPublicKey()}; }));
    EXPECT_TRUE(isYes([&](TrustPolicy& trust) { trust.roots.addCertificate(certificate); }));
    EXPECT_TRUE(isYes([&](TrustPolicy& trust) { trust.publicKeys = {certificate.getPublicKey()}; }));
    sample.store.setPart(u"/_xmlsignatures/a.cer", SignedSample::usualSigner().certificate.getAsByteArray());
    sample.store.setPart(u"/_xmlsignatures/_rels/sig1.xml.rels",
                         relationships("<Relationship Id='c' Target='a.cer' "
                                       "Type='http://schemas.openxmlformats.org/package/2006/relationships/"
                                       "digital-signature/certificate'/>"));
    EXPECT_EQ(sample.verify({}).signatures.at(0).cryptography.status, Status::Valid);
}

/// A key alone says nothing about a person.
TEST(StandardVerification, TakesAKeyWithoutCertificate) {
    for (const std::string kind : {"2048", "P-256"}) {
        const Identity signer = identityWith(kind);
        SignatureRecipe recipe;
        recipe.signer = &signer;
        recipe.hasXades = false;
        const auto der = signer.certificate.getPublicKey();
        if (kind == "2048") {
            recipe.keyInfo = "<KeyValue><RSAKeyValue><Modulus>" + base64(signer.certificate.getModulus()) +
                             "</Modulus><Exponent>" + base64(signer.certificate.getPublicExponent()) +
                             "</Exponent></RSAKeyValue></KeyValue>";
        } else {
            recipe.method = MORE + "ecdsa-sha256";
            recipe.keyInfo = "<KeyValue><ECKeyValue xmlns='http://www.w3.org/2009/xmldsig11#'><NamedCurve "
                             "URI='urn:oid:1.2.840.10045.3.1.7'/><PublicKey>" +
                             base64({der.end() - 65, der.end()}) + "</PublicKey></ECKeyValue></KeyValue>";
        }
        SignedSample sample;
        sample.sign(recipe);
        const PackageVerification result = sample.verify();
        EXPECT_EQ(result.signatures.at(0).cryptography.status, Status::Valid) << reasonsOf(result);
        EXPECT_EQ(result.signatures.at(0).trust.status, TrustAnswer::Status::Unknown);
        EXPECT_FALSE(result.isYes());
    }
}

} // namespace
