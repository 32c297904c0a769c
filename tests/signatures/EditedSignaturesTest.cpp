#include "Resigning.hpp"
#include "SignedPackage.hpp"
#include "support/ScriptedPackage.hpp"

#include <ctime>

namespace {

using namespace opc::model;
using namespace opc::test;

/// A signature of /a.xml whose document is changed while the package is closed.
class EditedSignature : public SignedPackage {
protected:
    EditedSignature() {
        signPart(u"/a.xml");
        close(false);
        document = text();
        reference = piece(document, "<Reference URI=", "</Manifest>");
    }

    /// Opens the package with a document of another form, signed by the owner of the key.
    void openResigned(const std::string& form) { openWith(resigned(form, privateKey)); }

    std::string document, reference;
};

TEST_F(EditedSignature, failsToLoadWithCode102) {
    const std::string local =
        "URI referenced to in the manifest reference should not be an external reference "
        "or a same-document reference.";
    const auto withURI = [&](const std::string& uri) {
        return replaced(document, "/a.xml?ContentType=application/xml", uri);
    };
    const auto withCertificate = [&](const std::string& text) { // where no schema knows it
        return replaced(document, piece(document, "<KeyValue>", "</KeyInfo>"),
                        R"(<X509Data><any xmlns="urn:any"><X509Certificate )"
                        R"(xmlns="http://www.w3.org/2000/09/xmldsig#">)" +
                            text + "</X509Certificate></any></X509Data>");
    };
    const std::pair<std::string, std::string> cases[] = {
        {withURI("http://e/a.xml?q"), local},
        {withURI("#f"), local},
        {withURI("a.xml"), local},
        {withURI("/none.xml?q"),
         "Part referenced to by the signature is not present in the package./none.xml"},
        {withCertificate("!!"), "The text isn't Base64: it holds a character outside the alphabet."},
        {withCertificate("AQID"), "*"},
    };
    for (const auto& [text, message] : cases) {
        openWith(text);
        try {
            manager->getSignatures();
            ADD_FAILURE() << "loaded: " << message;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), 102);
            EXPECT_TRUE(message == "*" || message == e.what()) << e.what();
        }
    }
}

TEST_F(EditedSignature, itsPartsAreDigestedByTheMethodsOfTheirReferences) {
    open();
    manager->sign({PartName(u"/a.xml")}, {}, privateKey,
                  SignatureParams(DigestMethod::SHA1, SignatureMethod::RSA1024));
    close(false);
    const std::string other = piece(text(u"/_xmlsignatures/sig2.xml"), "<Reference URI=", "</Manifest>");
    ASSERT_NE(other, reference);
    for (const std::string& references : {other, other + reference + other}) {
        openResigned(replaced(document, reference, references));
        EXPECT_EQ(verify(u"sig1"), 0);
    }
}

TEST_F(EditedSignature, aPartIsReadOnceHoweverManyReferencesAreToIt) {
    store.setPart(SIGNATURE,
                  toBytes(resigned(replaced(document, reference, repeated(reference, 50)), privateKey)));
    ScriptedPackage watched(store);
    package = std::make_unique<Package>(watched);
    manager = std::make_unique<DigitalSignatureManager>(*package);
    package->open(opc::interfaces::OpenMode::ReadOnly);
    const DigitalSignature signature = manager->getSignature(u"sig1");
    int reads = 0;
    watched.beforeEach = [&reads](const std::string& call) { reads += call == "read /a.xml" ? 1 : 0; };
    EXPECT_EQ(verify(signature), 0);
    EXPECT_EQ(reads, 1);
    close(true);
}

TEST_F(EditedSignature, aPartIsReadOnceForAllSignaturesTogether) {
    open();
    for (int i = 0; i < 3; ++i)
        manager->sign({PartName(u"/a.xml")}, {}, privateKey, publicKey, params);
    close(false);
    ScriptedPackage watched(store);
    package = std::make_unique<Package>(watched);
    manager = std::make_unique<DigitalSignatureManager>(*package);
    package->open(opc::interfaces::OpenMode::ReadOnly);
    bedrock::codesigning_verifier::FingerprintStore anyKey;
    anyKey.setSkippingVerification(true);
    int reads = 0;
    watched.beforeEach = [&reads](const std::string& call) { reads += call == "read /a.xml" ? 1 : 0; };
    for (int i = 1; i <= 2; ++i) {
        EXPECT_TRUE(manager->verifyAllSignatures(anyKey, {}, {}).isProperlyCodesigned());
        EXPECT_EQ(reads, i) << "and anew in each verification";
    }
    close(true);
}

TEST_F(EditedSignature, isReadOnceHoweverManyRelationshipsLeadToIt) {
    std::string relationships;
    for (int i = 0; i < 50; ++i)
        relationships += "<Relationship Id='s" + std::to_string(i) +
                         "' Type='http://schemas.openxmlformats.org/package/2006/relationships/"
                         "digitalsignature/signature' Target='sig1.xml'/>";
    store.setPart(u"/_xmlsignatures/_rels/origin.sigs.rels", opc::test::relationships(relationships));
    ScriptedPackage watched(store);
    package = std::make_unique<Package>(watched);
    manager = std::make_unique<DigitalSignatureManager>(*package);
    package->open(opc::interfaces::OpenMode::ReadOnly);
    int reads = 0;
    watched.beforeEach = [&reads](const std::string& call) {
        reads += call == "read /_xmlsignatures/sig1.xml" ? 1 : 0;
    };
    const auto signatures = manager->getSignatures();
    EXPECT_EQ(signatures.size(), 50U);
    EXPECT_EQ(reads, 1);
    for (const DigitalSignature& signature : signatures)
        EXPECT_EQ(verify(signature), 0);
    close(true);
}

/// References without a digest that counts: a document needs no valid signature to be loaded.
TEST_F(EditedSignature, loadsInTimeForAsManyReferencesAsThereAreRelationships) {
    constexpr int COUNT = 8000;
    std::string entries = "<Relationship Id='r' Type='urn:0' Target='x'/>";
    for (int i = 1; i < COUNT; ++i)
        entries += "<Relationship Id='r" + std::to_string(i) + "' Type='urn:1' Target='x'/>";
    for (const char16_t* name : {u"/_rels/a.xml.rels", u"/_rels/b.xml.rels"})
        store.setPart(name, relationships(entries));
    const std::string ofA = replaced(
        replaced(reference, "/a.xml?ContentType=application/xml", "/_rels/a.xml.rels"), "<DigestMethod",
        R"(<Transforms><Transform Algorithm="http://schemas.openxmlformats.org/package/2006/RelationshipTransform">)"
        R"(<pds:RelationshipGroupReference SourceType="urn:0"/></Transform></Transforms><DigestMethod)");
    const std::string ofB = replaced(ofA, "/_rels/a.xml.rels", "/_rels/B.xml.rels");
    openWith(replaced(document, reference, repeated(ofA + ofB, COUNT)));
    const std::clock_t begin = std::clock();
    EXPECT_EQ(manager->getSignatures().size(), 1U);
    EXPECT_LT(std::clock() - begin, 5 * CLOCKS_PER_SEC);
}

TEST_F(EditedSignature, holdsWithAnotherPackageObject) {
    openResigned(replaced(document, "<Manifest>", R"(<Manifest Id="m">)"));
    EXPECT_EQ(verify(u"sig1"), 0);
}

/// The serialiser puts a declaration first, wherever it stands in the document: one of the object's own is taken
/// out like one that reading adds.
TEST_F(EditedSignature, holdsWithADeclarationOfTheObjectsOwn) {
    const std::string declaration =
        R"( xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature")";
    openResigned(inserted(replaced(document, declaration, R"( xmlns="http://www.w3.org/2000/09/xmldsig#")"),
                          "<pds:SignatureTime", declaration));
    EXPECT_EQ(verify(u"sig1"), 0);
}

/// An object that lies in another one isn't what was signed, but what it references is read with the rest.
TEST_F(EditedSignature, makesPartsLookSignedByASecondPackageObject) {
    store.setPart(u"/b.xml", toBytes("<a>content</a>")); // as /a.xml, and so its digest
    const std::string first = piece(document, "<Object", "</Signature>");
    const std::string second = R"(<Object Id="other"><any xmlns="urn:any">)" +
                               replaced(first, "/a.xml", "/b.xml") + "</any></Object>";
    openWith(replaced(document, first, second + first));
    EXPECT_EQ(verify(u"sig1"), 101) << "in front it takes the place of the first";
    openWith(replaced(document, first, first + second));
    EXPECT_EQ(verify(u"sig1"), 0) << "the signed object is as it was";
    EXPECT_EQ(manager->getSignature(u"sig1").getSignedPartNames().size(), 2U);
    EXPECT_TRUE(manager->isSigned(PartName(u"/b.xml"))) << "though the signer never signed it";
    writeAll(part(u"/b.xml"), "changed");
    EXPECT_EQ(verify(u"sig1"), 101) << "and its digest is compared with the rest";
}

/// A countersignature leaves its own relationship out; without one, the ID is like any other.
TEST_F(SignedPackage, aRelationshipNamedLikeTheCountersignaturesIsProtectedWithoutOne) {
    package->createExternalRelationship(u"urn:other", u"http://e/", u"DSRelcountersig");
    EXPECT_EQ(verify(signAll()), 0);
    package->deleteRelationship(u"DSRelcountersig");
    package->createExternalRelationship(u"urn:other", u"http://f/", u"DSRelcountersig");
    reopen();
    EXPECT_EQ(verify(u"sig1"), 101);
}

} // namespace
