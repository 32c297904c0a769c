#include "SignedPackage.hpp"

#include "support/Cases.hpp"
#include "support/OpenSslCommand.hpp"

#include <opc/physical/LenientPackage.hpp>

#include <algorithm>

namespace {

using namespace opc::model;
using namespace opc::test;

class Signing : public SignedPackage {};

TEST_F(Signing, leavesPartsAndRelationshipsByTheLayout) {
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig1");
    EXPECT_EQ(signPart(u"/b.xml").getName(), u"sig2");

    const Part origin = part(ORIGIN);
    EXPECT_EQ(origin.getContentType().toString(),
              u"application/vnd.openxmlformats-package.digital-signature-origin");
    EXPECT_EQ(readAll(origin), "");
    const auto toOrigin = package->getRelationshipsByType(
        u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin");
    ASSERT_EQ(toOrigin.size(), 1U);
    EXPECT_EQ(toOrigin.begin()->getTargetURI().toString(), ORIGIN);
    EXPECT_EQ(origin.getRelationshipByID(u"DSRel1").getTargetURI().toString(), SIGNATURE);
    EXPECT_EQ(origin.getRelationshipByID(u"DSRel2").getType(),
              u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/signature");
    EXPECT_EQ(manager->getManagedRelationshipTypes(),
              (std::vector{toOrigin.begin()->getType(), origin.getRelationshipByID(u"DSRel2").getType()}));
    EXPECT_EQ(part(u"/_xmlsignatures/sig2.xml").getContentType().toString(),
              u"application/vnd.openxmlformats-package.digital-signaturexmlsignature+xml");
    EXPECT_TRUE(manager->isSigned(PartName(u"/A.xml")));
    EXPECT_FALSE(manager->isSigned(PartName(SIGNATURE)));

    EXPECT_EQ(package->getParts(ExcludeMode::ExcludeManaged).size(), 3U);
    EXPECT_EQ(package->getRelationships(ExcludeMode::ExcludeManaged).size(), 2U);
    reopen(OpenMode::ReadOnly);
    EXPECT_EQ(manager->getSignatures().size(), 2U);
    EXPECT_EQ(verify(u"sig1"), 0);
    EXPECT_EQ(verify(u"sig2"), 0);
}

TEST_F(Signing, worksWithEveryDigestAndKeySize) {
    for (const std::size_t bits : {1024U, 2048U, 4096U}) {
        const auto& pair = keysOf(bits);
        for (const DigestMethod digest : ALL_DIGESTS) {
            const auto signature =
                manager->sign({PartName(u"/a.xml")}, {}, pair.getPrivateKey(), pair.getPublicKey(),
                              SignatureParams(digest, keySizeToSignatureMethod(bits)));
            EXPECT_EQ(signature.getSignatureValue().size(), bits / 8);
            EXPECT_EQ(verify(signature, pair.getPublicKey()), 0);
        }
    }
    reopen(OpenMode::ReadOnly);
    for (const DigitalSignature& signature : manager->getSignatures())
        EXPECT_EQ(verify(signature, keysOf(signature.getSignatureValue().size() * 8).getPublicKey()), 0);
}

/// No DER key has this length. That must not matter after the signature is written.
TEST_F(Signing, worksWithKeysInPem) {
    const opc::test::OpenSslCommand openssl;
    for (const std::size_t bits : {2048U, 4096U}) {
        openssl.write("key", keysOf(bits).getPrivateKey());
        openssl.run("pkey -inform DER -in key -out private");
        openssl.run("rsa -inform DER -in key -pubout -out public");
        openssl.run("rsa -inform DER -in key -RSAPublicKey_out -out pkcs1");
        for (const char* file : {"public", "pkcs1"}) {
            const auto signature =
                manager->sign({PartName(u"/a.xml")}, {}, openssl.read("private"), openssl.read(file),
                              SignatureParams(DigestMethod::SHA256, keySizeToSignatureMethod(bits)));
            EXPECT_EQ(verify(signature, keysOf(bits).getPublicKey()), 0);
        }
    }
}

// The share of a signature in the limits is counted as in loading, before anything is made.
TEST_F(Signing, writesNothingThatLoadingRefuses) {
    signPart(u"/a.xml");
    const std::string document = opc::test::readAll(part(SIGNATURE));
    const auto tags = static_cast<std::size_t>(std::count(document.begin(), document.end(), '<'));
    const std::uint64_t elements = document.size() / 50 + tags / 2;
    const auto use = [&](const XmlLimits& limits, OpenMode mode) {
        close(true);
        package = std::make_unique<Package>(store, limits);
        manager = std::make_unique<DigitalSignatureManager>(*package);
        package->open(mode);
    };
    const auto limited = [](std::uint64_t bytes, std::uint64_t ofElements) {
        XmlLimits limits;
        limits.signature = {bytes, ofElements};
        return limits;
    };
    const std::string message = "The signature couldn't be loaded again: XML content can not have more than ";
    use(limited(document.size() - 1, elements), OpenMode::ReadWrite);
    EXPECT_RAISES(CouldNotGenerateSignature,
                  message + std::to_string(document.size() - 1) + " bytes (limit signature.bytes)",
                  signPart(u"/a.xml"));
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));
    use(limited(document.size(), elements - 1), OpenMode::ReadWrite);
    EXPECT_RAISES(CouldNotGenerateSignature,
                  message + std::to_string(elements - 1) + " elements (limit signature.elements)",
                  signPart(u"/a.xml"));

    use(limited(document.size(), elements), OpenMode::ReadWrite);
    signPart(u"/a.xml");
    close(false);
    use(limited(document.size(), elements), OpenMode::ReadOnly);
    EXPECT_EQ(verify(u"sig1"), 0);

    // The form that needs a tree counts more.
    close(true);
    std::string other = text();
    other.insert(other.find("<Signature"), "<!---->");
    store.setPart(SIGNATURE, toBytes(other));
    use(limited(other.size() * 2, 2 * elements), OpenMode::ReadOnly);
    EXPECT_THROW(manager->getSignatures(), InvalidSignature);
    use(limited(other.size() * 2 - 1, 10 * elements), OpenMode::ReadOnly);
    EXPECT_THROW(manager->getSignatures(), InvalidSignature);
    use(limited(other.size() * 2, 10 * elements), OpenMode::ReadOnly);
    EXPECT_EQ(verify(u"sig1"), 0);
}

TEST_F(Signing, refusesInTheOrderOfItsChecks) {
    const std::vector<PartName> nothing;
    const std::vector<PartName> one{PartName(u"/a.xml")};
    const std::vector<PartName> missing{PartName(u"/none.xml")};
    const auto fails = [&](const std::string& message, const auto& action) {
        EXPECT_RAISES(CouldNotGenerateSignature, message, action());
    };
    fails("No parts or relationships provided for signing.",
          [&] { manager->sign(nothing, {}, Bytes(), Bytes(), params); });
    fails("The verification key is empty.", [&] { manager->sign(missing, {}, Bytes(), Bytes(), params); });
    fails("The signing key is empty.", [&] { manager->sign(missing, {}, Bytes(), publicKey, params); });
    fails("No part found with the name:/none.xml", [&] { sign(missing, {}); });
    fails("No part found with the name:/_rels/.rels", [&] { signPart(u"/_rels/.rels"); });
    fails("Relationship ID does not exist", [&] { sign(nothing, {byId(u"/", u"none")}); });
    fails("No relationships in the package matched the provided relationship selectors.",
          [&] { sign(one, {byType(u"/", u"urn:none")}); });
    fails("No relationship of /a.xml has the type urn:none.", [&] {
        sign(one, {byType(u"/", u"urn:main"), byType(u"/a.xml", u"urn:none"), byId(u"/", u"rId1")});
    });
    fails("Invalid key was provided. 2048-bit key was expected for signing",
          [&] { manager->sign(one, {}, privateKey, publicKey, SignatureParams()); });
    fails("Invalid key was provided. 1024-bit key was expected for verification ",
          [&] { manager->sign(one, {}, privateKey, Bytes(300, 1), params); });
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));

    // The last two took a number each. Failures before that take none.
    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig3");
    reopen(OpenMode::ReadOnly);
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", manager->sign(one, {}, Bytes(), params));
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", manager->removeSignature(u"none"));
    package->close(false);
    EXPECT_RAISES(PackageNotOpen, "Package is not open", manager->getSignatures());
}

/// The origin of signatures in another form, in another letter case.
constexpr char16_t FOREIGN_ORIGIN[] = u"/_XMLSignatures/Origin.sigs";
const std::string FOREIGN_ORIGIN_TYPE =
    R"(<Default Extension="sigs" ContentType="application/vnd.openxmlformats-package.digital-signature-origin"/>)";

TEST_F(Signing, takesTheNextNumberWhoseNamesAreFree) {
    const auto check = [this](const std::u16string& parts, const std::string& types,
                              const std::string& ofOrigin, const std::u16string& name) {
        MemoryPackage content;
        fill(content, words(parts));
        content.setPart(u"/a.xml", {});
        content.setContentTypes(contentTypes(USUAL_CONTENT_TYPES + types));
        if (!ofOrigin.empty())
            content.setPart(u"/_XMLSignatures/_rels/Origin.sigs.rels", relationships(ofOrigin));
        opc::physical::LenientPackage lenient(content);
        Package odd(lenient);
        DigitalSignatureManager signatures(odd);
        odd.open(OpenMode::ReadWrite);
        EXPECT_EQ(signatures.sign({PartName(u"/a.xml")}, {}, privateKey, publicKey, params).getName(), name);
        odd.close(false);
        odd.open(OpenMode::ReadOnly);
        EXPECT_TRUE(
            signatures.verifySignature(signatures.getSignature(name), publicKey).isProperlyCodesigned());
    };
    forEachCase("signatures/numbers.txt", check);
}

TEST_F(Signing, failsWhereNoNumberHelps) {
    const std::tuple<const char16_t*, std::string, std::string> cases[] = {
        {FOREIGN_ORIGIN, R"(<Default Extension="sigs" ContentType="a/b"/>)",
         "Cannot use a part name that already exists: /_xmlsignatures/origin.sigs"},
        {u"/_xmlsignatures", R"(<Override PartName="/_xmlsignatures" ContentType="a/b"/>)",
         "Cannot use a part name that is a superset of an existing name: /_xmlsignatures"},
    };
    for (const auto& [name, type, message] : cases) {
        close(true);
        store.setPart(name, {});
        store.setContentTypes(contentTypes(USUAL_CONTENT_TYPES + type));
        open();
        EXPECT_RAISES(CouldNotGenerateSignature, message, signPart(u"/a.xml"));
        close(true);
        store.removePart(name);
    }
}

// A package has one origin [M6.1].
TEST_F(Signing, sharesTheOriginWithSignaturesOfAnotherForm) {
    const std::string ofPackage =
        R"(<Relationship Id="rId1" Target="_XMLSignatures/Origin.sigs" )"
        R"(Type="http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin"/>)";
    const Bytes ofOrigin = relationships(
        R"(<Relationship Id="rId1" Target="sig1.xml" )"
        R"(Type="http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/signature"/>)");
    for (const bool hasSignature : {true, false}) {
        close(true);
        store.setContentTypes(contentTypes(USUAL_CONTENT_TYPES + FOREIGN_ORIGIN_TYPE));
        store.setPart(u"/_rels/.rels", relationships(ofPackage));
        store.setPart(FOREIGN_ORIGIN, {});
        if (hasSignature) {
            store.setPart(u"/_XMLSignatures/sig1.xml", {});
            store.setPart(u"/_XMLSignatures/_rels/Origin.sigs.rels", ofOrigin);
        }
        open();
        const std::u16string first = hasSignature ? u"sig2" : u"sig1";
        EXPECT_EQ(signAll().getName(), first);
        signAll();
        manager->countersignAllSignatures(privateKey, params);
        reopen();
        for (const DigitalSignature& signature : manager->getSignatures())
            EXPECT_EQ(verify(signature), 0);
        manager->removeAllSignatures();
        reopen();
        EXPECT_EQ(package->getRelationships().size(), 1U);
        EXPECT_EQ(part(FOREIGN_ORIGIN).getRelationships().size(), hasSignature ? 1U : 0U);
        if (hasSignature) {
            close(true);
            store.removePart(u"/_XMLSignatures/sig1.xml");
            store.removePart(u"/_XMLSignatures/_rels/Origin.sigs.rels");
        }
    }
}

TEST_F(Signing, aPackageBeingCreatedCanNotBeSigned) {
    close(true);
    open(OpenMode::CreateOnly);
    EXPECT_RAISES(PackageCreateOnly, "Package is open only for create", signPart(u"/a.xml"));
}

TEST_F(Signing, aForeignPublicKeyIsFoundOutAndTheSignatureStays) {
    const auto other = bedrock::crypto::generateRsaKeyPair(1024);
    EXPECT_RAISES(
        CouldNotGenerateSignature,
        "The verification key is invalid since the signature doesn't verify correctly after signing.",
        manager->sign({PartName(u"/a.xml")}, {}, privateKey, other.getPublicKey(), params));
    EXPECT_TRUE(package->hasPart(PartName(SIGNATURE)));
    manager->removeSignature(u"sig1");
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));
    EXPECT_TRUE(package->getRelationshipsByType(u"urn:main").size() == 1);
    EXPECT_EQ(package->getRelationships().size(), 2U);
}

TEST_F(Signing, theWholePackageIsSignedWithoutItsSignatures) {
    const DigitalSignature first = signAll();
    EXPECT_EQ(first.getSignedPartNames().size(), 3U);
    EXPECT_EQ(first.getSignedRelationships().size(), 3U);
    const DigitalSignature second = signAll();
    EXPECT_EQ(second.getSignedPartNames().size(), 3U);
    reopen(OpenMode::ReadOnly);
    EXPECT_EQ(verify(u"sig1"), 0);
    EXPECT_EQ(verify(u"sig2"), 0);

    close(false);
    for (const std::u16string& name : store.partNames())
        store.removePart(name);
    open();
    EXPECT_RAISES(CouldNotGenerateSignature, "No parts or relationships provided for signing.", signAll());
}

TEST_F(Signing, relationshipsOfOneTypeCountOnceForEachOfThem) {
    Part source = part(u"/b.xml");
    for (int i = 0; i < 300; ++i)
        source.createExternalRelationship(u"urn:many", u"x");
    EXPECT_EQ(signAll().getSignedRelationships().size(), 3U + 300U * 300U);
    reopen();
    EXPECT_EQ(verify(u"sig1"), 0);
    part(u"/b.xml").deleteRelationship(u"rId300");
    reopen(OpenMode::ReadOnly);
    EXPECT_EQ(verify(u"sig1"), 101);
}

TEST_F(Signing, countersigningCoversTheSignaturesOnce) {
    EXPECT_RAISES(CouldNotGenerateSignature,
                  "Package has no signatures present, and so cannot be countersigned.",
                  manager->countersignAllSignatures(privateKey, params));
    EXPECT_RAISES(SignatureNotFound, "No countersignatures found in package.",
                  manager->verifyCountersignature(publicKey));
    EXPECT_RAISES(SignatureNotFound, "The provided signature part name is invalid or does not exist.",
                  manager->getCountersignature());
    manager->removeCountersignature();
    signPart(u"/a.xml");
    signPart(u"/b.xml");
    EXPECT_EQ(manager->countersignAllSignatures(privateKey, publicKey, params).getName(), u"sigcountersig");
    EXPECT_RAISES(CouldNotGenerateSignature,
                  "Package has already been countersigned once. Please remove "
                  "countersignature before countersigning again.",
                  manager->countersignAllSignatures(privateKey, params));
    EXPECT_TRUE(manager->verifyCountersignature(publicKey).isProperlyCodesigned());
    reopen();
    EXPECT_TRUE(manager->verifyCountersignature(publicKey).isProperlyCodesigned());
    EXPECT_EQ(verify(u"sig1"), 0);

    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig3") << "a countersignature takes no number";
    reopen();
    EXPECT_EQ(verify(u"sigcountersig"), 101) << "a later signature has joined what it signed";
    manager->removeCountersignature();
    manager->countersignAllSignatures(privateKey, params);

    manager->removeSignature(u"sig2");
    EXPECT_EQ(verify(u"sigcountersig"), 104);
    reopen();
    EXPECT_RAISES(
        InvalidSignature,
        "Part referenced to by the signature is not present in the package./_xmlsignatures/sig2.xml",
        manager->removeCountersignature());
}

TEST_F(Signing, removalCleansUpBehindTheLastSignature) {
    const DigitalSignature first = signPart(u"/a.xml");
    signPart(u"/b.xml");
    EXPECT_RAISES(SignatureNotFound,
                  "Incorrect signature name provided. It should not start with backslash like a part name.",
                  manager->removeSignature(u"/_xmlsignatures/sig1.xml"));
    EXPECT_RAISES(SignatureNotFound, "The provided signature part name is invalid or does not exist.",
                  manager->removeSignature(u"sig9"));
    package->createPart(PartName(u"/_xmlsignatures/other.xml"), ContentType(u"a/b"), StandardPartInfo());
    EXPECT_RAISES(SignatureNotFound, "The provided part name is not a signature part.",
                  manager->removeSignature(u"other"));
    package->deletePart(PartName(u"/_xmlsignatures/other.xml"));

    manager->removeSignature(first);
    EXPECT_TRUE(package->hasPart(PartName(ORIGIN)));
    EXPECT_EQ(first.getName(), u"sig1") << "a handle stays readable";
    EXPECT_THROW(manager->removeSignature(first), SignatureNotFound);
    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig3") << "no number is given out twice";
    manager->removeAllSignatures();
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));
    EXPECT_EQ(package->getRelationships().size(), 2U);
    EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig1");
}

TEST_F(Signing, changesNothingWhereADocumentWouldLoseElements) {
    const std::string relationship =
        "<p:Relationship Id='x' Type='urn:x' Target='/a.xml' "
        "xmlns:p='http://schemas.openxmlformats.org/package/2006/relationships'/></Relationships>";
    const std::string entry =
        "<p:Override PartName='/b.xml' ContentType='a/b' "
        "xmlns:p='http://schemas.openxmlformats.org/package/2006/content-types'/></Types>";
    signPart(u"/a.xml");
    close(false);
    struct Case {
        const char16_t* name; ///< of the document; empty for the content types stream
        std::string end;
        bool allowsMoreSignatures;
    };
    const Case cases[] = {{u"/_rels/.rels", relationship, true},
                          {u"/_xmlsignatures/_rels/origin.sigs.rels", relationship, false},
                          {u"", entry, false}};
    for (const auto& [name, end, allowsMoreSignatures] : cases) {
        const bool isStream = name[0] == 0;
        const Bytes before = isStream ? store.contentTypes() : store.partBytes(name);
        const Bytes unread = toBytes(replaced(toText(before), end.substr(end.find("</")), end));
        isStream ? store.setContentTypes(unread) : store.setPart(name, unread);
        open();
        const std::size_t parts = package->getParts().size();
        EXPECT_THROW(manager->removeAllSignatures(), CouldNotRemoveSignature) << end;
        if (!allowsMoreSignatures) {
            EXPECT_THROW(signPart(u"/b.xml"), CouldNotGenerateSignature) << end;
        }
        EXPECT_EQ(manager->getSignatures().size(), 1U);
        EXPECT_EQ(package->getParts().size(), parts);
        close(false);
        EXPECT_EQ(isStream ? store.contentTypes() : store.partBytes(name), unread);
        isStream ? store.setContentTypes(before) : store.setPart(name, before);
    }
    removeSignatureParts();
    store.setPart(u"/_rels/.rels",
                  toBytes(replaced(toText(relationships("")), "</Relationships>", relationship)));
    open();
    EXPECT_THROW(signPart(u"/b.xml"), CouldNotGenerateSignature) << "the origin part needs a relationship";
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));
    EXPECT_FALSE(manager->isPackageSigned());
}

} // namespace
