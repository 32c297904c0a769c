#include "SignedPackage.hpp"

#include <iostream>
#include <sstream>

#include <malloc.h>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::interfaces::OpenMode;

class Loading : public SignedPackage {
protected:
    /// Gives a stored signature, whose name ends in `number`, another identifier.
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
        {{"Signature4294967295"}, nullptr}, // the counter wraps, and the name is in use
        {{"Signaturecountersig"}, nullptr},
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
        if (next)
            EXPECT_EQ(signPart(u"/b.xml").getName(), next);
        else
            EXPECT_THROW(signPart(u"/b.xml"), CouldNotGenerateSignature) << identifiers[0];
        package->close(true);
        removeSignatureParts();
        package->open(OpenMode::ReadWrite);
    }
}

TEST_F(Loading, anIdentifierThatIsNoNumberOf32BitsPassesAsItsOwnFailure) {
    signPart(u"/a.xml");
    close(false);
    const std::string document = text();
    std::ostringstream errors;
    std::streambuf* const before = std::cerr.rdbuf(errors.rdbuf());
    setIdentifier(1, "Signature4294967296");
    open();
    EXPECT_THROW(manager->getSignatures(), std::out_of_range);
    close(true);
    store.setPart(SIGNATURE, toBytes(document));
    setIdentifier(1, "Signature");
    open();
    EXPECT_THROW(manager->getSignatures(), std::invalid_argument);
    std::cerr.rdbuf(before);
    EXPECT_EQ(errors.str(), "Internal exception: Out of range. Trying to get numeric ID from 4294967296\n"
                            "Internal exception: Invalid argument. Trying to get numeric ID from \n");
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

TEST_F(Loading, theSignaturesTogetherHaveALimitForRepeatedSelections) {
    for (int i = 0; i < 1000; ++i)
        package->createExternalRelationship(u"urn:many", u"x");
    sign({}, std::vector<RelationshipSelector>(3400, byType(u"/", u"urn:many")));
    close(false);
    const Bytes signature = store.partBytes(SIGNATURE);
    open();
    const auto addCopy = [&](const char16_t* name) {
        Part copy = package->createPart(PartName(name), part(SIGNATURE).getContentType(), StandardPartInfo());
        copy.getOutputStream().write(signature.data(), signature.size());
        Part origin = part(ORIGIN);
        origin.createInternalRelationship(origin.getRelationships().begin()->getType(), URI(name));
        reopen();
    };
    addCopy(u"/copy.xml");
    EXPECT_EQ(manager->getSignatures().size(), 2U);
    addCopy(u"/another.xml");
    EXPECT_RAISES(InvalidSignature,
                  "The signatures of a package can't cover more than 10000000 selected relationships.",
                  manager->getSignatures());
}

TEST_F(Loading, aForeignIdentifierThatIsNoURILeavesTheRestUsable) {
    signPart(u"/a.xml");
    close(false);
    setIdentifier(1, "Signature\u00E9");
    open();
    const auto all = manager->getSignatures();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(verify(*all.begin()), 101) << "its property names the old one";
    // What must name the part of each signature can't.
    EXPECT_THROW(package->getParts(ExcludeMode::ExcludeManaged), InvalidURI);
    EXPECT_THROW(manager->getManagedPartNames(), InvalidURI);
    EXPECT_THROW(signAll(), InvalidURI);
    EXPECT_THROW(manager->removeSignature(*all.begin()), InvalidURI);
    EXPECT_THROW(manager->removeAllSignatures(), InvalidURI);
    EXPECT_FALSE(package->getParts().empty());
    EXPECT_EQ(verify(signPart(u"/b.xml")), 0);
    reopen();
    EXPECT_EQ(manager->getSignatures().size(), 2U);
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
