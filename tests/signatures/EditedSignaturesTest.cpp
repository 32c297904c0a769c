#include "Resigning.hpp"
#include "SignedPackage.hpp"
#include "signatures/SignatureDocuments.hpp"
#include "support/Cases.hpp"

#include <opc/model/SignatureCoverage.hpp>

#include <ctime>

namespace {

using namespace opc::model;
using namespace opc::test;

/// A signature of /a.xml. Its document changes while the package is closed.
class EditedSignature : public SignedPackage {
protected:
    EditedSignature() {
        signPart(u"/a.xml");
        close(false);
        document = text();
        reference = piece(document, "<Reference URI=", "</Manifest>");
    }

    /// Opens the package with a document in another form, signed by the owner of the key.
    void openResigned(const std::string& form) { openWith(resigned(form, privateKey)); }

    std::string document, reference;
};

TEST_F(EditedSignature, failsToLoadWithCode102) {
    const std::string signedInfo = piece(document, "<SignedInfo", "<SignatureValue");
    const std::string property = piece(document, "<SignatureProperty ", "</SignatureProperties>");
    const std::pair<const char*, std::string> pieces[] = {
        {"$object", piece(document, "<Object", "</Signature>")},
        {"$signed-info", signedInfo},
        {"$in-signed-info", piece(signedInfo, "<Canon", "</SignedInfo>")},
        {"$to-object", piece(signedInfo, "<Reference", "</SignedInfo>")},
        {"$rest", piece(document, "\"><DigestMethod", "</Signature>")},
        {"$content", piece(document, "<SignedInfo", "</Signature>")},
        {"$manifest", piece(document, "<Manifest", "<SignatureProperties>")},
        {"$other-property", replaced(property, "idSignatureTime", "t")},
        {"$namespaced-reference", replaced(reference, ">", " xmlns='http://www.w3.org/2000/09/xmldsig#'>")},
        {"$key", piece(document, "<KeyValue>", "</KeyInfo>")},
        {"$certificate", certificate("rsa:1024")},
    };
    const auto check = [&](const std::string& message, std::string what, std::string with) {
        for (const auto& [name, text] : pieces) {
            what = replacedAll(what, name, text);
            with = replacedAll(with, name, text);
        }
        openWith(replaced(document, what, with));
        try {
            manager->getSignatures();
            ADD_FAILURE() << "loaded: " << with;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), 102);
            EXPECT_TRUE(message == "*" || message == e.what()) << e.what() << "\n" << message;
        }
    };
    forEachCase("signatures/edited.txt", check);
}

/// What else a document can have, and what is signed in another form.
TEST_F(EditedSignature, holdsWithWhatDoesNotPassForSigned) {
    const std::string canonicalized =
        "<Transforms><Transform Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/></Transforms>"
        "<DigestMethod";
    const std::string forms[] = {
        replaced(document, "<Manifest>", R"(<Manifest Id="m">)"),
        replaced(document, "<DigestMethod", canonicalized),
        replaced(document, "</Signature>",
                 "<Object Id='o'><SignatureProperties><SignatureProperty Target='#x'><x xmlns='urn:any' "
                 "Id='other'>"
                 "<DigestValue/></x></SignatureProperty></SignatureProperties></Object></Signature>"),
    };
    for (const std::string& form : forms) {
        openResigned(form);
        EXPECT_EQ(verify(u"sig1"), 0) << form;
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

/// References without a digest that counts: a document is loaded without a valid signature.
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

/// The serialiser puts a declaration first, wherever it is in the document. One of the object's own is removed like
/// one that reading adds.
TEST_F(EditedSignature, holdsWithADeclarationOfTheObjectsOwn) {
    const std::string declaration =
        R"( xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature")";
    openResigned(inserted(replaced(document, declaration, R"( xmlns="http://www.w3.org/2000/09/xmldsig#")"),
                          "<pds:SignatureTime", declaration));
    EXPECT_EQ(verify(u"sig1"), 0);
}

/// Nobody can declare another signature of the same signer to be a countersignature, to remove signatures or add
/// some.
TEST_F(EditedSignature, holdsAsACountersignatureOnlyIfItWasMadeAsOne) {
    constexpr char16_t COUNTERSIGNATURE[] = u"/_xmlsignatures/sigcountersig.xml";
    open();
    manager->countersignAllSignatures(privateKey, params);
    reopen();
    EXPECT_EQ(verify(u"sigcountersig"), 0);
    close(true);
    store.setPart(COUNTERSIGNATURE, toBytes(replaced(document, "Signature1", "Signaturecountersig")));
    open();
    EXPECT_EQ(verify(u"sigcountersig"), 104);
    EXPECT_EQ(verify(u"sig1"), 0);
}

/// Only the origin part's own relationship to the countersignature is left out of the signed ones.
TEST_F(SignedPackage, noOtherRelationshipPassesForTheCountersignatures) {
    signPart(u"/a.xml");
    manager->countersignAllSignatures(privateKey, params);
    const std::u16string ofSignature = part(ORIGIN).getRelationships().begin()->getType();
    const auto create = [&](const std::u16string& source, const std::u16string& type,
                            const char16_t* target) {
        const auto createIn = [&](RelationshipSource& from) {
            if (from.hasRelationship(u"DSRelcountersig"))
                from.deleteRelationship(u"DSRelcountersig");
            return from.createInternalRelationship(type, URI(target), u"DSRelcountersig");
        };
        if (source == u"/")
            return createIn(*package);
        Part from(part(source.c_str()));
        return createIn(from);
    };
    const std::pair<const char16_t*, std::u16string> cases[] = {
        {u"/", u"urn:other"}, {u"/", ofSignature}, {u"/b.xml", ofSignature}};
    for (const auto& [source, type] : cases) {
        const Relationship relationship = create(source, type, u"/_xmlsignatures/sigcountersig.xml");
        const DigitalSignature signature = sign({}, {byType(source, type.c_str())});
        EXPECT_EQ(verify(signature), 0);
        EXPECT_TRUE(SignatureCoverage(*manager, signature).covers(relationship));
        create(source, type, u"/a.xml");
        reopen();
        EXPECT_EQ(verify(signature.getName().c_str()), 101) << opc::toUDEString(type);
        manager->removeSignature(signature.getName());
    }
}

/// It is left out of new signatures that are made while it exists, and of older signatures.
TEST_F(SignedPackage, theRelationshipToTheCountersignatureIsNeverSigned) {
    signPart(u"/a.xml");
    const std::u16string type = part(ORIGIN).getRelationships().begin()->getType();
    sign({}, {byType(ORIGIN, type.c_str()), byType(ORIGIN, type.c_str())}); // before it exists
    manager->countersignAllSignatures(privateKey, params);
    reopen();
    EXPECT_EQ(verify(u"sig2"), 101) << "its own relationship has joined those of the type";
    EXPECT_EQ(verify(u"sigcountersig"), 0);
    const DigitalSignature later = sign({}, {byId(ORIGIN, u"DSRel1"), byId(ORIGIN, u"DSRelcountersig")});
    EXPECT_EQ(later.getSignedRelationships().size(), 1U);
    reopen();
    EXPECT_EQ(verify(later.getName().c_str()), 0);
}

} // namespace
