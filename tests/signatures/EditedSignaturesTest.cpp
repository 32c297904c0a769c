#include "Resigning.hpp"
#include "SignatureDocuments.hpp"
#include "SignedPackage.hpp"
#include "support/ScriptedPackage.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

#include <ctime>

namespace {

using namespace opc::model;
using namespace opc::test;

/// A signature of /a.xml whose document is changed while the package is closed.
class EditedSignature : public SignedPackage {
protected:
    static constexpr char16_t PART[] = u"/_xmlsignatures/sig1.xml";

    EditedSignature() {
        signPart(u"/a.xml");
        close(false);
        document = toText(store.partBytes(PART));
        const std::size_t begin = document.find("<Reference", document.find("<Manifest>"));
        reference = document.substr(begin, document.find("</Manifest>") - begin);
    }

    void openWith(const std::string& text) {
        close(true);
        store.setPart(PART, toBytes(text));
        open();
    }

    std::string document, reference;
};

TEST_F(EditedSignature, failsToLoadWithCode102) {
    const std::string local =
        "URI referenced to in the manifest reference should not be an external reference "
        "or a same-document reference.";
    const std::string certificate =
        R"(<X509Data><any xmlns="urn:any"><X509Certificate xmlns="http://www.w3.org/2000/09/xmldsig#">)";
    const std::string key = document.substr(document.find("<KeyInfo>"));
    const auto withURI = [&](const std::string& uri) {
        return replaced(document, "/a.xml?ContentType=application/xml", uri);
    };
    const auto withCertificate = [&](const std::string& text) {
        return replaced(document, key.substr(0, key.find("</KeyInfo>")),
                        "<KeyInfo>" + certificate + text + "</X509Certificate></any></X509Data>");
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
    const Resigning resigning(privateKey);
    const auto sha1 =
        bedrock::crypto::CryptoEngine(std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>())
            .createSHA1DigestEngine();
    const auto digest = bedrock::crypto::utils::base64Encode(sha1->computeDigest(store.partBytes(u"/a.xml")));
    const std::size_t value = reference.find("<DigestValue>") + 13;
    std::string other = reference;
    other.replace(value, other.find('<', value) - value, opc::toASCIIString(digest));
    other =
        replaced(other, "http://www.w3.org/2001/04/xmlenc#sha256", "http://www.w3.org/2000/09/xmldsig#sha1");
    openWith(resigning.sign(replaced(document, reference, other)));
    EXPECT_EQ(verify(u"sig1"), 0);
    openWith(resigning.sign(replaced(document, reference, other + reference + other)));
    EXPECT_EQ(verify(u"sig1"), 0);
}

TEST_F(EditedSignature, aPartIsReadOnceHoweverManyReferencesAreToIt) {
    store.setPart(
        PART, toBytes(Resigning(privateKey).sign(replaced(document, reference, repeated(reference, 50)))));
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
    std::string relationships, references;
    for (int i = 0; i < COUNT; ++i)
        relationships += "<Relationship Id='r" + std::to_string(i) +
                         "' Type='urn:" + std::to_string(i == 0 ? 0 : 1) + "' Target='x'/>";
    const std::string transform =
        R"(<Transforms><Transform Algorithm="http://schemas.openxmlformats.org/package/2006/RelationshipTransform">)"
        R"(<pds:RelationshipGroupReference xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature" SourceType="urn:0"/>)"
        "</Transform></Transforms>";
    const std::pair<const char16_t*, std::string> sources[] = {{u"/_rels/a.xml.rels", "/_rels/a.xml.rels"},
                                                               {u"/_rels/b.xml.rels", "/_rels/B.xml.rels"}};
    for (const auto& [part, uri] : sources) {
        store.setPart(part, opc::test::relationships(relationships));
        references += replaced(replaced(reference, "/a.xml?ContentType=application/xml", uri),
                               "<DigestMethod", transform + "<DigestMethod");
    }
    openWith(replaced(document, reference, repeated(references, COUNT)));
    const std::clock_t begin = std::clock();
    EXPECT_EQ(manager->getSignatures().size(), 1U);
    EXPECT_LT(std::clock() - begin, 5 * CLOCKS_PER_SEC);
}

TEST_F(SignedPackage, signaturesAreFoundByTheirExactNames) {
    signPart(u"/a.xml");
    EXPECT_EQ(manager->getSignature(u"sig1").getName(), u"sig1");
    EXPECT_TRUE(throws<SignatureNotFound>("Could not find the given signature by the given name.",
                                          [&] { manager->getSignature(u"SIG1"); }));
    EXPECT_TRUE(throws<SignatureNotFound>("The provided signature part name is invalid or does not exist.",
                                          [&] { manager->getSignature(u"sig2"); }));
    EXPECT_EQ(
        manager->getManagedRelationshipTypes(),
        (std::vector<std::u16string>{
            u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin",
            u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/signature"}));
}

TEST_F(SignedPackage, theNextNumberFollowsTheSignaturesThatAreThere) {
    for (int i = 0; i < 3; ++i)
        signPart(u"/a.xml");
    const auto setIdentifier = [this](const char16_t* name, const std::string& from, const std::string& to) {
        const std::string text =
            replaced(toText(store.partBytes(name)), "\"Signature" + from, "\"Signature" + to);
        store.setPart(name, toBytes(replaced(text, "#Signature" + from, "#Signature" + to)));
    };
    package->close(false);
    setIdentifier(u"/_xmlsignatures/sig2.xml", "2", "7");
    setIdentifier(u"/_xmlsignatures/sig3.xml", "3", "x");
    package->open(opc::interfaces::OpenMode::ReadWrite);
    EXPECT_EQ(signPart(u"/b.xml").getName(), u"sig9") << "7 gives 8, and the foreign one adds 1";

    package->close(true);
    for (const std::u16string& name : store.partNames())
        if (name.rfind(u"/_xmlsignatures/", 0) == 0)
            store.removePart(name);
    store.setPart(u"/_rels/.rels", relationships(""));
    package->open(opc::interfaces::OpenMode::ReadWrite);
    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig1") << "the counter starts anew with each package";
}

/// A countersignature leaves its own relationship out; without one, the ID is like any other.
TEST_F(SignedPackage, aRelationshipNamedLikeTheCountersignaturesIsProtectedWithoutOne) {
    package->createExternalRelationship(u"urn:other", u"http://e/", u"DSRelcountersig");
    const DigitalSignature signature = signAll();
    EXPECT_EQ(verify(signature), 0);
    package->deleteRelationship(u"DSRelcountersig");
    package->createExternalRelationship(u"urn:other", u"http://f/", u"DSRelcountersig");
    reopen();
    EXPECT_EQ(verify(u"sig1"), 101);
}

TEST_F(SignedPackage, aClosedPackageIsSaidToBeClosedHoweverItWasOpened) {
    for (const auto mode : {opc::interfaces::OpenMode::ReadOnly, opc::interfaces::OpenMode::CreateOnly}) {
        package->close(true);
        package->open(mode);
        manager->isPackageSigned();
        package->close(true);
        EXPECT_TRUE(throws<PackageNotOpen>(
            "Package is not open", [&] { manager->sign({PartName(u"/a.xml")}, {}, privateKey, params); }));
        EXPECT_TRUE(throws<PackageNotOpen>("Package is not open", [&] { manager->removeAllSignatures(); }));
    }
}

/// A signature without key holds by a key of any of the three sizes, which the length of the bytes tells.
TEST_F(SignedPackage, aKeyWhoseLengthFitsNoSizeIsRefused) {
    manager->sign({PartName(u"/a.xml")}, {}, privateKey, params);
    reopen();
    EXPECT_EQ(verify(u"sig1"), 0);
    const std::pair<std::size_t, int> cases[] = {{1, 103},  {127, 103}, {128, 17},  {255, 17},
                                                 {256, 17}, {383, 17},  {384, 103}, {511, 103},
                                                 {512, 17}, {639, 17},  {640, 103}, {1024, 103}};
    for (const auto& [length, code] : cases) {
        try {
            manager->verifySignature(manager->getSignature(u"sig1"), Bytes(length, 7));
            ADD_FAILURE() << length;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), code) << length;
        }
    }
}

using bedrock::codesigning_verifier::ErrorCode;
using bedrock::codesigning_verifier::ErrorMap;

TEST(VerificationStatus, saysOfEachCodeWhetherItIsOfTheSignatureOrTheChain) {
    const std::pair<ErrorCode, char> cases[] = {
        {ErrorMap<-1>(), ' '},  {ErrorMap<0>(), ' '},   {ErrorMap<1>(), 'S'},   {ErrorMap<2>(), 'S'},
        {ErrorMap<3>(), 'C'},   {ErrorMap<4>(), 'C'},   {ErrorMap<5>(), 'C'},   {ErrorMap<6>(), 'C'},
        {ErrorMap<7>(), 'C'},   {ErrorMap<8>(), 'C'},   {ErrorMap<9>(), 'C'},   {ErrorMap<10>(), 'C'},
        {ErrorMap<11>(), 'C'},  {ErrorMap<12>(), 'S'},  {ErrorMap<13>(), 'C'},  {ErrorMap<14>(), ' '},
        {ErrorMap<15>(), 'S'},  {ErrorMap<16>(), 'C'},  {ErrorMap<17>(), 'S'},  {ErrorMap<18>(), 'S'},
        {ErrorMap<19>(), 'C'},  {ErrorMap<20>(), ' '},  {ErrorMap<100>(), ' '}, {ErrorMap<101>(), 'S'},
        {ErrorMap<102>(), ' '}, {ErrorMap<103>(), ' '}, {ErrorMap<104>(), ' '},
    };
    for (const auto& [code, of] : cases) {
        const DigitalSignatureVerificationStatus status(
            bedrock::codesigning_verifier::CodesigningVerificationStatus(
                code, bedrock::certificates::CertificateValidationResults(
                          bedrock::certificates::CertificateChainStatus::Good, "")));
        EXPECT_EQ(status.isErrorFromSignature(), of == 'S') << code.value();
        EXPECT_EQ(status.isErrorFromCertificateChain(), of == 'C') << code.value();
        EXPECT_EQ(status.isProperlyCodesigned(), code.value() == 0) << code.value();
    }
}

} // namespace
