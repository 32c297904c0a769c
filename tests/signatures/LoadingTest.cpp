#include "SignedPackage.hpp"

#include <malloc.h>

namespace {

using namespace opc::model;
using namespace opc::test;

class Loading : public SignedPackage {
protected:
    /// Changes the identifier of a stored signature, whose name ends in `number`.
    void setIdentifier(int number, const std::string& identifier) {
        const std::u16string name =
            u"/_xmlsignatures/sig" + std::u16string(1, char16_t(u'0' + number)) + u".xml";
        const std::string old = "Signature" + std::to_string(number) + '"';
        const std::string once = replaced(text(name.c_str()), '"' + old, '"' + identifier + '"');
        store.setPart(name, toBytes(replaced(once, '#' + old, '#' + identifier + '"')));
    }
};

TEST_F(Loading, theCounterStandsAboveEveryNumberInUse) {
    const std::pair<std::vector<const char*>, const char16_t*> cases[] = {
        {{"Signature7"}, u"sig8"},
        {{"Signature007"}, u"sig8"},
        {{"Sig7"}, u"sig2"},
        {{"Signature4294967295"}, u"sig2"}, // the counter wraps, and a part has the name sig1.xml
        {{"Signaturecountersig"}, u"sig2"},
        {{"Signature1", "Signature7", "Signaturex"}, u"sig9"}, // 7 gives 8, and the foreign one adds 1
    };
    for (const auto& [identifiers, next] : cases) {
        for (std::size_t i = 0; i < identifiers.size(); ++i)
            signPart(u"/a.xml");
        ASSERT_TRUE(package->hasPart(PartName(SIGNATURE))) << "the counter starts anew with each package";
        package->close(false);
        int number = 0;
        for (const char* identifier : identifiers)
            setIdentifier(++number, identifier);
        package->open(OpenMode::ReadWrite);
        EXPECT_EQ(manager->getSignatures().size(), identifiers.size());
        EXPECT_EQ(signPart(u"/b.xml").getName(), next);
        package->close(true);
        removeSignatureParts();
        package->open(OpenMode::ReadWrite);
    }
}

TEST_F(Loading, anIdentifierThatNamesNoSignatureFailsWithCode102) {
    signPart(u"/a.xml");
    close(false);
    const std::string document = text();
    const std::pair<const char*, const char*> cases[] = {
        {"Signature4294967296",
         "The identifier of the signature is a number of more than 32 bits: 4294967296"},
        {"Signature", "The signature has no identifier."},
        {"Signature\u00E9", "*"},
    };
    for (const auto& [identifier, message] : cases) {
        store.setPart(SIGNATURE, toBytes(document));
        setIdentifier(1, identifier);
        open();
        try {
            package->getParts(ExcludeMode::ExcludeManaged);
            ADD_FAILURE() << identifier;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), 102);
            EXPECT_TRUE(message == std::string("*") || message == std::string(e.what())) << e.what();
        }
        close(true);
    }
    store.setPart(SIGNATURE, toBytes(replaced(document, "Id=\"Signature1\" ", "")));
    open();
    EXPECT_RAISES(InvalidSignature, "The signature has no identifier.", manager->getSignatures());
}

TEST_F(Loading, whatLeadsToSignaturesIsOneWayInThePackage) {
    signPart(u"/a.xml");
    close(false);
    const std::string ofPackage = text(u"/_rels/.rels"),
                      ofOrigin = text(u"/_xmlsignatures/_rels/origin.sigs.rels");
    const std::string types = toText(store.contentTypes());
    const std::string origin = piece(ofPackage, "<Relationship Id=\"rId3\"", "</Relationships>");
    const auto edit = [&](const std::string& inPackage, const std::string& inOrigin,
                          const std::string& inTypes) {
        store.setPart(u"/_rels/.rels", toBytes(inPackage));
        store.setPart(u"/_xmlsignatures/_rels/origin.sigs.rels", toBytes(inOrigin));
        store.setContentTypes(toBytes(inTypes));
    };
    const auto external = [](const std::string& relationships, const char* before) {
        return replaced(relationships, before, std::string("TargetMode=\"External\" ") + before);
    };
    const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
        {ofPackage, ofOrigin, types, ""},
        {replaced(ofPackage, origin, origin + replaced(origin, "rId3", "rId4")), ofOrigin, types,
         "The package has more than one relationship to a signature origin part."},
        {external(ofPackage, "Target=\"_xmlsignatures/origin.sigs\""), ofOrigin, types,
         "A relationship of signatures leads out of the package: _xmlsignatures/origin.sigs"},
        {ofPackage, external(ofOrigin, "Target=\"sig1.xml\""), types,
         "A relationship of signatures leads out of the package: sig1.xml"},
        {ofPackage, ofOrigin, replaced(types, "digital-signaturexmlsignature+xml", "other+xml"),
         "The part /_xmlsignatures/sig1.xml doesn't have the content type of signatures."},
    };
    for (const auto& [inPackage, inOrigin, inTypes, message] : cases) {
        edit(inPackage, inOrigin, inTypes);
        open();
        if (message.empty())
            EXPECT_EQ(verify(u"sig1"), 0);
        else
            EXPECT_RAISES(InvalidSignature, message, manager->getSignatures());
        close(true);
    }
}

TEST_F(Loading, failuresAreTriedAgainByTheNextOperation) {
    signPart(u"/a.xml");
    close(false);
    const std::string good = text();
    openWith("no xml");
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(manager->isPackageSigned(), InvalidSignature);
    writeAll(part(SIGNATURE), good);
    EXPECT_TRUE(manager->isPackageSigned());
}

TEST_F(Loading, whatASignatureNamesMustExist) {
    manager->sign({}, {byId(u"/", u"rId2")}, privateKey, params);
    package->deleteRelationship(u"rId2");
    reopen();
    EXPECT_RAISES(InvalidSignature,
                  "Relationship with ID rId2 referenced to in the signature is not present in the package",
                  manager->getSignatures());
    package->createExternalRelationship(u"urn:other", u"x", u"rId2");
    manager->removeAllSignatures();

    manager->sign({}, {byType(u"/a.xml", u"urn:next")}, privateKey, params);
    part(u"/a.xml").deleteRelationship(u"rId1");
    reopen();
    EXPECT_RAISES(
        InvalidSignature,
        "Relationship with Type urn:next referenced to in the signature is not present in the /a.xml",
        manager->getSignatures());
}

/// Each relationship of a type is selected once for each of them.
TEST_F(Loading, whatIsSelectedVeryOftenIsReadAndCountedOnce) {
    for (int i = 0; i < 2300; ++i)
        package->createExternalRelationship(u"urn:many", std::u16string(60, u'x'));
    for (int i = 0; i < 4; ++i)
        signAll();
    reopen(OpenMode::ReadOnly);
    EXPECT_EQ(manager->getSignatures().size(), 4U);
    EXPECT_EQ(verify(u"sig1"), 0);
    EXPECT_EQ(verify(u"sig4"), 0);
    EXPECT_EQ(manager->getSignature(u"sig4").getSignedRelationships().size(), 2300U * 2300U + 3U);
}

TEST_F(Loading, allSignaturesTogetherHaveALimitForWhatTheyDigest) {
    constexpr char TOO_MUCH[] = "The selected relationships of all signatures of a package can't have more "
                                "than 2 GiB, those above 1 KiB counted four times.";
    package->createExternalRelationship(u"urn:long", std::u16string(1U << 20, u'x'));
    const auto select = [this](std::size_t times) {
        return sign({}, std::vector<RelationshipSelector>(times, byType(u"/", u"urn:long")));
    };
    EXPECT_RAISES(CouldNotGenerateSignature, TOO_MUCH, select(512));
    const std::u16string first = select(30).getName();
    EXPECT_RAISES(CouldNotGenerateSignature, TOO_MUCH, select(490));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(verify(select(30)), 0) << "what an earlier signature selects too isn't digested again";
    close(false);
    const std::string document = text();
    const std::string selection = piece(document, "<pds:RelationshipGroup", "</Transform>");
    store.setPart(SIGNATURE, toBytes(replaced(document, selection, repeated(selection, 100))));
    open();
    EXPECT_EQ(manager->getSignatures().size(), 3U);
    try {
        manager->verifySignature(manager->getSignature(u"sig2"), publicKey);
        ADD_FAILURE() << "it can't be told which of them takes too long";
    } catch (const InvalidSignature& e) {
        EXPECT_STREQ(e.what(), TOO_MUCH);
        EXPECT_EQ(e.getErrorCode().value(), 102);
    }
}

TEST_F(Loading, aNewPackageHasNoneOfTheSignaturesThatWereLoadedBefore) {
    signPart(u"/a.xml");
    package->close(false);
    package->open(OpenMode::ReadOnly);
    EXPECT_TRUE(manager->isPackageSigned());
    package->close(false);
    package->open(OpenMode::CreateOnly);
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(manager->isSigned(PartName(u"/a.xml")));
    EXPECT_TRUE(manager->getSignatures().empty());
    package->createPart(PartName(SIGNATURE), ContentType(u"a/b"), StandardPartInfo());
    EXPECT_EQ(package->getParts(ExcludeMode::ExcludeManaged).size(), 1U);
}

TEST_F(Loading, readsManyTimesWithoutGrowing) {
    signPart(u"/a.xml");
    const auto load = [this](int times) {
        for (int i = 0; i < times; ++i) {
            package->close(false);
            package->open(OpenMode::ReadOnly);
            manager->getSignatures();
        }
        return mallinfo2().uordblks;
    };
    const std::size_t before = load(2);
    EXPECT_LT(load(100), before + (1U << 20)) << "documents stay in the parser's pool";
}

TEST_F(Loading, anOriginWithoutSignaturesIsAnUnsignedPackage) {
    package->createPart(PartName(u"/elsewhere.sigs"), ContentType(u"a/b"), StandardPartInfo());
    package->createInternalRelationship(
        u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin",
        URI(u"/elsewhere.sigs"));
    EXPECT_FALSE(manager->isPackageSigned());
    signPart(u"/a.xml");
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN))) << "the origin that is there is followed";
    EXPECT_EQ(part(u"/elsewhere.sigs").getRelationships().size(), 1U);
}

TEST_F(Loading, findsSignaturesByTheirExactNames) {
    signPart(u"/a.xml");
    EXPECT_EQ(manager->getSignature(u"sig1").getName(), u"sig1");
    EXPECT_RAISES(SignatureNotFound, "Could not find the given signature by the given name.",
                  manager->getSignature(u"SIG1"));
    EXPECT_RAISES(SignatureNotFound, "The provided signature part name is invalid or does not exist.",
                  manager->getSignature(u"sig2"));
}

TEST_F(Loading, aClosedPackageIsSaidToBeClosedHoweverItWasOpened) {
    for (const auto mode : {OpenMode::ReadOnly, OpenMode::CreateOnly}) {
        package->close(true);
        package->open(mode);
        manager->isPackageSigned();
        package->close(true);
        EXPECT_RAISES(PackageNotOpen, "Package is not open", signPart(u"/a.xml"));
        EXPECT_RAISES(PackageNotOpen, "Package is not open", manager->removeAllSignatures());
    }
}

} // namespace
