#include "Resigning.hpp"
#include "SignedPackage.hpp"
#include "support/Cases.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using Answer = SignatureVerdict::Answer;
using Kind = VerdictReason::Kind;

/// The keys of the fixture have 1024 bits. The policies here accept that, except in the tests of weak keys.
class Verdict : public SignedPackage {
protected:
    static constexpr char ORIGIN_TEXT[] = "/_xmlsignatures/origin.sigs";

    SignaturePolicy byKey() const { return SignaturePolicy::byPublicKey(publicKey).acceptWeak(); }

    /// Checks that the verdict isn't yes, and that its only reason has that kind and a text with these words.
    void expectReason(const SignatureVerdict& verdict, Kind kind, const std::vector<std::string>& texts) {
        EXPECT_FALSE(verdict.isYes());
        ASSERT_EQ(verdict.getReasons().size(), 1U);
        const VerdictReason& reason = verdict.getReasons().front();
        EXPECT_EQ(reason.kind, kind) << reason.text;
        EXPECT_EQ(verdict.getAnswer(), reason.leavesOpen() ? Answer::CannotTell : Answer::No);
        for (const std::string& text : texts)
            EXPECT_NE(reason.text.find(text), std::string::npos) << text << " in: " << reason.text;
    }

    DigitalSignature signWith(const Identity& signer, const TrustStore& trusted,
                              const CertificateValidationOptions& options = {}) {
        return manager->sign({PartName(u"/a.xml")}, {}, signer.getPrivateKey(), signer.certificate, {},
                             options, SignatureParams(), trusted);
    }
};

TEST_F(Verdict, isYesOnlyIfThereAreSignaturesAndAllHold) {
    expectReason(manager->judge(byKey()), Kind::NoSignatures, {});
    signAll();
    EXPECT_TRUE(manager->judge(byKey()).isYes());
    manager->sign({PartName(u"/a.xml")}, {}, keysOf(2048).getPrivateKey(), SignatureParams());
    const SignatureVerdict both = manager->judge(byKey());
    ASSERT_EQ(both.getSignatures().size(), 2U);
    EXPECT_TRUE(both.getSignatures()[0].holds);
    EXPECT_EQ(both.getAnswer(), Answer::CannotTell) << "the key doesn't fit the second one";
    EXPECT_TRUE(manager->judge(manager->getSignature(u"sig1"), byKey()).isYes());
    package->close(true);
    EXPECT_RAISES(PackageNotOpen, "Package is not open", manager->judge(byKey()));
}

TEST_F(Verdict, namesWhatIsDamagedAndWhereThatIs) {
    sign({PartName(u"/a.xml"), PartName(u"/b.xml")}, {byType(u"/", u"urn:main"), byId(u"/a.xml", u"rId1")});
    close(false);
    const auto check = [this](const std::string& kind, const std::u16string& name, const std::string& what,
                              const std::string& with, const std::string& one, const std::string& two,
                              const std::string& three) {
        const std::string before = text(name.c_str());
        if (what == "gone")
            store.removePart(name);
        else
            store.setPart(name, toBytes(replaced(before, what, with)));
        open();
        expectReason(manager->judge(byKey()), kind == "Unreadable" ? Kind::Unreadable : Kind::DoesNotHold,
                     {one, two, three});
        close(true);
        store.setPart(name, toBytes(before));
    };
    forEachCase("signatures/damaged.txt", check);
    open();
    signPart(u"/a.xml");
    package->deletePart(PartName(u"/a.xml"));
    expectReason(manager->judge(manager->getSignature(u"sig2"), byKey()), Kind::NotChecked,
                 {"sig2", "/a.xml"});
}

TEST_F(Verdict, fullCoverageIsAskedForOnlyOnDemand) {
    const auto create = [this](const char16_t* name, const char16_t* type) {
        package->createPart(PartName(name), ContentType(type), StandardPartInfo());
    };
    const std::tuple<std::function<void()>, Kind, std::string> cases[] = {
        {[&] { create(u"/c.xml", u"application/xml"); }, Kind::NotCovered, "/c.xml"},
        {[&] { package->createExternalRelationship(u"urn:new", u"x", u"new"); }, Kind::NotCovered,
         "relationship new of /"},
        {[&] { part(u"/b.xml").createExternalRelationship(u"urn:next", u"x", u"new"); }, Kind::NotCovered,
         "relationship new of /b.xml"},
        {[&] {
             package->deletePart(PartName(u"/b.xml"));
             create(u"/b.xml", u"text/xml;charset=utf-8");
         },
         Kind::ContentTypeChanged,
         "/b.xml has the content type text/xml;charset=utf-8 and was signed as application/xml"},
        {[&] { writeAll(part(ORIGIN), "x"); }, Kind::NotCovered, ORIGIN_TEXT},
    };
    signAll();
    EXPECT_FALSE(manager->judge(byKey()).getCoverage().isFull()) << "keywords are never covered";
    close(true);
    store.removePart(CORE_PROPERTIES);
    for (const auto& [change, kind, text] : cases) {
        open();
        signAll();
        EXPECT_TRUE(manager->judge(byKey().requireFull()).isYes()) << text;
        change();
        EXPECT_TRUE(manager->judge(byKey()).isYes()) << text;
        EXPECT_FALSE(manager->judge(byKey()).getCoverage().isFull()) << text;
        expectReason(manager->judge(byKey().requireFull()), kind, {text});
        close(true);
    }
}

TEST_F(Verdict, coverageCountsWhatSignaturesThatHoldCoverTogether) {
    signPart(u"/a.xml");
    sign({PartName(u"/b.xml")}, {byType(u"/", u"urn:main")});
    const PackageCoverage both = manager->judge(byKey()).getCoverage();
    EXPECT_EQ(both.countParts(), 3U) << "but for those of the signatures";
    EXPECT_EQ(both.countRelationships(), 3U);
    EXPECT_EQ(both.getUncoveredParts(), std::vector<PartName>{PartName(CORE_PROPERTIES)});
    EXPECT_EQ(both.getUncoveredRelationships().size(), 2U);
    EXPECT_EQ(both.getKeywordsSize(), 0U) << "they aren't the exception where nothing is covered";
    writeAll(part(u"/b.xml"), "changed");
    EXPECT_EQ(manager->judge(byKey()).getCoverage().getUncoveredParts().size(), 2U);
    const auto signatures = manager->getSignatures();
    EXPECT_EQ(manager->computeCoverage({signatures.begin(), signatures.end()}).getUncoveredParts().size(),
              1U);

    signPart(CORE_PROPERTIES);
    const SignatureVerdict verdict = manager->judge(manager->getSignature(u"sig3"), byKey().requireFull());
    EXPECT_EQ(verdict.getCoverage().getKeywordsBegin(), std::string("<coreProperties>").size());
    EXPECT_EQ(verdict.getCoverage().getKeywordsSize(), std::string("<cp:keywords>old</cp:keywords>").size());
    EXPECT_NE(verdict.getReasons().back().text.find("keywords"), std::string::npos);
}

TEST_F(Verdict, signaturesOfAnotherFormCanNotBeChecked) {
    package->createInternalRelationship(
        u"http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin",
        URI(u"/b.xml"));
    expectReason(manager->judge(byKey()), Kind::ForeignForm, {});
    signAll();
    expectReason(manager->judge(byKey()), Kind::ForeignForm, {});
}

TEST_F(Verdict, judgesThePackageAsItStands) {
    signAll();
    package->createExternalRelationship(u"urn:main", u"x", u"new");
    expectReason(manager->judge(byKey()), Kind::DoesNotHold, {"/_rels/.rels"});
    package->deleteRelationship(u"new");
    EXPECT_TRUE(manager->judge(byKey()).isYes());
    package->deleteRelationship(u"rId1");
    expectReason(manager->judge(byKey()), Kind::NotChecked, {"urn:main"});
}

/// Where relationships are signed, other programs could read one more of a signed type. Elsewhere, what is ignored is
/// uncovered like everything else.
TEST_F(Verdict, elementsThatWereNotReadCountAmongTheIgnored) {
    close(true);
    store.removePart(CORE_PROPERTIES);
    store.setPart(u"/_rels/b.xml.rels", relationships(""));
    open();
    signAll();
    close(false);
    const auto expectUnread = [this](const std::string& document, bool isSignedFrom) {
        SCOPED_TRACE(document);
        open();
        if (isSignedFrom)
            expectReason(manager->judge(byKey()), Kind::IgnoredItem, {document});
        EXPECT_EQ(manager->judge(byKey()).isYes(), !isSignedFrom);
        expectReason(manager->judge(byKey().requireFull()), Kind::IgnoredItem, {document});
        close(true);
    };
    const std::pair<const char16_t*, bool> documents[] = {
        {u"/_rels/.rels", true}, {u"/_rels/a.xml.rels", true}, {u"/_rels/b.xml.rels", false}};
    for (const auto& [name, isSignedFrom] : documents) {
        const Bytes before = store.partBytes(name);
        store.setPart(name, toBytes(replaced(
                                toText(before), "</Relationships>",
                                "<r:Relationship Id='r' Type='urn:main' Target='/b.xml' xmlns:r='http://"
                                "schemas.openxmlformats.org/package/2006/relationships'/></Relationships>")));
        expectUnread(opc::toUDEString(name), isSignedFrom);
        store.setPart(name, before);
    }
    const Bytes before = store.contentTypes();
    for (const std::string entry :
         {"<t:Override PartName='/b.xml' ContentType='text/html' "
          "xmlns:t='http://schemas.openxmlformats.org/package/2006/content-types'/>",
          "<Default Extension='XML' ContentType='text/html'/>",
          "<Override PartName='/_rels/a.xml.rels' ContentType='text/html'/>"}) {
        store.setContentTypes(toBytes(replaced(toText(before), "</Types>", entry + "</Types>")));
        expectUnread("/[Content_Types].xml", false);
    }
}

TEST_F(Verdict, namesThatContinueOthersCountAmongTheIgnored) {
    close(true);
    store.removePart(CORE_PROPERTIES);
    store.setPart(u"/a.xml/b.xml", {});
    open();
    signAll();
    EXPECT_TRUE(manager->judge(byKey()).isYes());
    expectReason(manager->judge(byKey().requireFull()), Kind::IgnoredItem,
                 {"/a.xml/b.xml (its name begins with that of the part /a.xml)"});
}

TEST_F(Verdict, relationshipsThatWereNotReadMayBeTheSignedOnes) {
    const std::string signedOnes = "<Relationship Id='r' Type='urn:t' Target='/a.xml'/>"
                                   "<Relationship Id='s' Type='urn:t' Target='/a.xml'/>";
    const std::string prefixed =
        "<r:Relationship xmlns:r='http://schemas.openxmlformats.org/package/2006/relationships' ";
    close(true);
    store.setPart(u"/_rels/b.xml.rels", relationships(signedOnes));
    open();
    signAll();
    close(false);
    store.setPart(u"/_rels/b.xml.rels", relationships(replaced(signedOnes, "<Relationship ", prefixed)));
    open();
    expectReason(manager->judge(byKey()), Kind::NotChecked, {"what wasn't read in /_rels/b.xml.rels"});
    close(true);
    store.setPart(u"/a.xml", {});
    open();
    expectReason(manager->judge(byKey()), Kind::DoesNotHold, {"/a.xml"});
}

TEST_F(Verdict, weakAlgorithmsOfValueAndAnyDigestCountUnlessAccepted) {
    const auto& strong = keysOf(2048);
    const auto signStrong = [&](DigestMethod digest) {
        manager->sign({PartName(u"/a.xml")}, {}, strong.getPrivateKey(),
                      SignatureParams(digest, SignatureMethod::RSA2048));
    };
    const auto weakenReference = [&] {
        signStrong(DigestMethod::SHA256);
        close(false);
        const std::string reference = piece(text(), "<Reference URI=\"/a.xml", "</Reference>");
        const std::string md5 =
            replaced(replaced(reference, "http://www.w3.org/2001/04/xmlenc#sha256",
                              "http://www.w3.org/2001/04/xmldsig-more#md5"),
                     piece(reference, "<DigestValue>", "</"), "<DigestValue>0ot0T5DbUjSnSQZZ+4h+4g==");
        openWith(resigned(replaced(text(), reference, md5), strong.getPrivateKey(), 2048));
    };
    const std::tuple<std::function<void()>, Bytes, std::vector<std::string>> cases[] = {
        {[&] { signPart(u"/a.xml"); }, publicKey, {"RSA key of 1024 bits"}},
        {[&] { signStrong(DigestMethod::MD5); },
         strong.getPublicKey(),
         {"MD5 digest of #idPackageObject, /a.xml, the signature value"}},
        {[&] { signStrong(DigestMethod::SHA1); }, strong.getPublicKey(), {"SHA-1 digest of"}},
        {weakenReference, strong.getPublicKey(), {"MD5 digest of /a.xml"}},
    };
    for (const auto& [make, key, texts] : cases) {
        make();
        expectReason(manager->judge(SignaturePolicy::byPublicKey(key)), Kind::WeakAlgorithm, texts);
        const SignatureVerdict accepted = manager->judge(SignaturePolicy::byPublicKey(key).acceptWeak());
        EXPECT_TRUE(accepted.isYes()) << texts[0];
        EXPECT_EQ(accepted.getSignatures().front().weaknesses.size(), 1U) << texts[0];
        manager->removeAllSignatures();
    }
    signStrong(DigestMethod::SHA224);
    EXPECT_TRUE(manager->judge(SignaturePolicy::byPublicKey(strong.getPublicKey())).isYes());
}

TEST_F(Verdict, weakCertificatesCountUnlessAccepted) {
    TrustStore trusted;
    const Identity root = makeIssuer("Root");
    trusted.addCertificate(root.certificate);
    CertificateValidationOptions lax;
    lax.setAcceptingWeakDigests(true);
    signWith(makeSigner(&root, [](CertificateRecipe& recipe) { recipe.digest = EVP_sha1(); }), trusted, lax);
    expectReason(manager->judge(SignaturePolicy::byTrust(trusted, lax)), Kind::WeakAlgorithm, {"CN=Signer"});
    const SignatureVerdict accepted = manager->judge(SignaturePolicy::byTrust(trusted).acceptWeak());
    EXPECT_TRUE(accepted.isYes());
    EXPECT_EQ(accepted.getSignatures().front().weaknesses.size(), 1U);
}

TEST_F(Verdict, theSignerIsNamedOnlyIfThatWasChecked) {
    TrustStore trusted;
    TrustStore other;
    const Identity root = makeIssuer("Root");
    const Identity signer = makeSigner(&root);
    trusted.addCertificate(root.certificate);
    other.addCertificate(makeIssuer("Other").certificate);
    FingerprintStore known;
    FingerprintStore unknown;
    known.addFingerprint(signer.certificate.getSHA256Fingerprint());
    unknown.addFingerprint(std::string(64, 'a'));
    unknown.setSkippingVerification(true);
    signWith(signer, trusted);
    const bedrock::crypto::CryptoEngine engine(std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>());
    const Bytes key = encodeRsaPublicKey(engine, 2048, signer.certificate.getModulus(),
                                         signer.certificate.getPublicExponent());
    const std::tuple<SignaturePolicy, bool, SignerEvidence, std::string> cases[] = {
        {SignaturePolicy::byTrust(trusted), true, SignerEvidence::Certificate, "CN=Signer"},
        {SignaturePolicy::byTrust(other, {}, known), true, SignerEvidence::Fingerprint, "CN=Signer"},
        {SignaturePolicy::byFingerprints(known), true, SignerEvidence::Fingerprint, "CN=Signer"},
        {SignaturePolicy::byPublicKey(key), true, SignerEvidence::PublicKey, ""},
        {SignaturePolicy::byTrust(other), false, SignerEvidence::None, ""},
        {SignaturePolicy::byFingerprints(unknown), false, SignerEvidence::None, ""},
    };
    const auto subjectOf = [](const JudgedSignature& judged) {
        return judged.signer.empty() ? std::string() : judged.signer.getSubject();
    };
    for (const auto& [policy, isYes, evidence, subject] : cases) {
        SCOPED_TRACE(&policy - &std::get<0>(cases[0]));
        const SignatureVerdict verdict = manager->judge(policy);
        EXPECT_EQ(verdict.isYes(), isYes);
        EXPECT_EQ(verdict.getSignatures().front().evidence, evidence);
        EXPECT_EQ(subjectOf(verdict.getSignatures().front()), subject);
    }
    expectReason(manager->judge(SignaturePolicy::byTrust(other)), Kind::SignerNotAccepted, {"isn't trusted"});

    manager->removeAllSignatures();
    signPart(u"/a.xml");
    expectReason(manager->judge(SignaturePolicy::byTrust(trusted, {}, unknown)), Kind::SignerNotAccepted,
                 {"no certificate"});
}

TEST_F(Verdict, aCertificateOfAnotherKeyIsNoYes) {
    const auto& pair = keysOf(2048);
    const auto policy = SignaturePolicy::byPublicKey(pair.getPublicKey());
    manager->sign({PartName(u"/a.xml")}, {}, pair.getPrivateKey(), pair.getPublicKey(), SignatureParams());
    EXPECT_TRUE(manager->judge(policy).isYes());
    close(false);
    const std::string certificate = makeSigner(nullptr).certificate.getAsString();
    openWith(
        replaced(text(), piece(text(), "<KeyInfo>", "</KeyInfo>"),
                 "<KeyInfo><X509Data><X509Certificate>" + certificate + "</X509Certificate></X509Data>"));
    expectReason(manager->judge(policy), Kind::SignerNotAccepted, {"a certificate of another key"});
}

TEST_F(Verdict, tellsWhetherAYesRestsOnTheClaimedTime) {
    TrustStore trusted;
    const Identity root = makeIssuer("Root");
    trusted.addCertificate(root.certificate);
    const Identity signer =
        makeSigner(&root, [](CertificateRecipe& recipe) { recipe.notAfter = "20110101000000Z"; });
    CertificateValidationOptions then;
    then.setCheckTime(std::chrono::system_clock::from_time_t(1280000000)); // in 2010
    manager->sign({PartName(u"/a.xml")}, {}, signer.getPrivateKey(), signer.certificate, {}, then,
                  SignatureParams(DigestMethod::SHA256), trusted);
    const auto policy = SignaturePolicy::byTrust(trusted);
    expectReason(manager->judge(policy), Kind::SignerNotAccepted, {"expired"});
    EXPECT_FALSE(
        manager->judge(SignaturePolicy::byTrust(trusted, then)).getSignatures()[0].restsOnClaimedTime);
    close(false);
    const std::string old =
        replaced(text(), piece(text(), "<pds:Value>", "</"), "<pds:Value>2010-07-25T00:00:00Z");
    openWith(resigned(old, signer.getPrivateKey(), 2048));
    EXPECT_TRUE(manager->judge(policy).isYes());
    EXPECT_TRUE(manager->judge(policy).getSignatures()[0].restsOnClaimedTime);
    openWith(old);
    EXPECT_TRUE(manager->judge(policy).getSignatures()[0].claimedTime.is_special())
        << "anybody could write it";
}

} // namespace
