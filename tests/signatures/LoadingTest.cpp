#include "SignedPackage.hpp"

#include <iostream>
#include <sstream>

#include <malloc.h>

namespace {

using namespace opc::model;
using namespace opc::test;

class Loading : public SignedPackage {
protected:
    /// Gives the identifier of a stored signature, as it stands in its document, another value.
    void setIdentifier(const char16_t* partName, const std::string& from, const std::string& to) {
        std::string text = toText(store.partBytes(partName));
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
            text.replace(at, from.size(), to);
        store.setPart(partName, toBytes(text));
    }
};

TEST_F(Loading, theCounterStandsAboveEveryNumberInUse) {
    struct Case {
        const char* identifier;
        const char16_t* next;
    };
    for (const Case& c : {Case{"Signature7", u"sig8"}, Case{"Signature007", u"sig8"}, Case{"Sig7", u"sig2"},
                          Case{"Signature4294967295", u"sig1"}, Case{"Signaturecountersig", u"sig1"}}) {
        signPart(u"/a.xml");
        close(false);
        setIdentifier(u"/_xmlsignatures/sig1.xml", "Signature1", c.identifier);
        open();
        if (std::u16string(c.next) == u"sig1") // the name is in use: the counter itself is seen after removal
            package->deletePart(PartName(u"/b.xml"));
        const auto all = manager->getSignatures();
        ASSERT_EQ(all.size(), 1U);
        if (std::u16string(c.next) == u"sig1")
            EXPECT_THROW(signPart(u"/a.xml"), CouldNotGenerateSignature) << c.identifier;
        else
            EXPECT_EQ(signPart(u"/a.xml").getName(), c.next) << c.identifier;
        close(true);
        for (const std::u16string& name : store.partNames())
            if (name.rfind(u"/_xmlsignatures/", 0) == 0)
                store.removePart(name);
        store.setPart(u"/_rels/.rels", relationships(""));
        open();
    }
}

TEST_F(Loading, anIdentifierThatIsNoNumberOf32BitsPassesAsItsOwnFailure) {
    signPart(u"/a.xml");
    close(false);
    setIdentifier(u"/_xmlsignatures/sig1.xml", "Signature1", "Signature4294967296");
    open();
    std::ostringstream errors;
    std::streambuf* const before = std::cerr.rdbuf(errors.rdbuf());
    EXPECT_THROW(manager->getSignatures(), std::out_of_range);
    std::cerr.rdbuf(before);
    EXPECT_EQ(errors.str(), "Internal exception: Out of range. Trying to get numeric ID from 4294967296\n");

    package->close(true);
    setIdentifier(u"/_xmlsignatures/sig1.xml", "Signature4294967296", "Signature");
    package->open(opc::interfaces::OpenMode::ReadWrite);
    errors.str("");
    std::cerr.rdbuf(errors.rdbuf());
    EXPECT_THROW(manager->getSignatures(), std::invalid_argument);
    std::cerr.rdbuf(before);
    EXPECT_EQ(errors.str(), "Internal exception: Invalid argument. Trying to get numeric ID from \n");
}

TEST_F(Loading, failuresAreTriedAgainByTheNextOperation) {
    signPart(u"/a.xml");
    close(false);
    const auto good = store.partBytes(u"/_xmlsignatures/sig1.xml");
    store.setPart(u"/_xmlsignatures/sig1.xml", toBytes("no xml"));
    open();
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(manager->isPackageSigned(), InvalidSignature);
    writeAll(part(u"/_xmlsignatures/sig1.xml"), toText(good));
    EXPECT_TRUE(manager->isPackageSigned());
}

TEST_F(Loading, whatASignatureNamesMustExist) {
    const auto select = [](const char16_t* source, RelationshipSelectorType type, const char16_t* criteria) {
        return RelationshipSelector(URI(source), type, criteria);
    };
    manager->sign({}, {select(u"/", RelationshipSelectorType::SourceId, u"rId2")}, privateKey, params);
    package->deleteRelationship(u"rId2");
    reopen();
    EXPECT_TRUE(throws<InvalidSignature>(
        "Relationship with ID rId2 referenced to in the signature is not present in the package",
        [&] { manager->getSignatures(); }));
    package->createExternalRelationship(u"urn:other", u"x", u"rId2");
    manager->removeAllSignatures();

    manager->sign({}, {select(u"/a.xml", RelationshipSelectorType::SourceType, u"urn:next")}, privateKey,
                  params);
    part(u"/a.xml").deleteRelationship(u"rId1");
    reopen();
    EXPECT_TRUE(throws<InvalidSignature>(
        "Relationship with Type urn:next referenced to in the signature is not present in the /a.xml",
        [&] { manager->getSignatures(); }));
}

TEST_F(Loading, theSignaturesTogetherHaveALimitForRepeatedSelections) {
    for (int i = 0; i < 1000; ++i)
        package->createExternalRelationship(u"urn:many", u"x");
    const RelationshipSelector many(URI(u"/"), RelationshipSelectorType::SourceType, u"urn:many");
    manager->sign({}, std::vector<RelationshipSelector>(3400, many), privateKey, publicKey, params);
    Part origin = part(u"/_xmlsignatures/origin.sigs");
    const auto type = origin.getRelationships().begin()->getType();
    origin.createInternalRelationship(type, URI(u"sig1.xml"));
    reopen();
    EXPECT_EQ(manager->getSignatures().size(), 2U);
    part(u"/_xmlsignatures/origin.sigs").createInternalRelationship(type, URI(u"sig1.xml"));
    reopen();
    EXPECT_TRUE(throws<InvalidSignature>(
        "The signatures of a package can't cover more than 10000000 selected relationships.",
        [&] { manager->getSignatures(); }));
}

TEST_F(Loading, aForeignIdentifierThatIsNoURILeavesTheRestUsable) {
    signPart(u"/a.xml");
    close(false);
    setIdentifier(u"/_xmlsignatures/sig1.xml", "Signature1", "Signature\u00E9");
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
    package->open(opc::interfaces::OpenMode::ReadOnly);
    EXPECT_TRUE(manager->isPackageSigned());
    package->close(false);
    package->open(opc::interfaces::OpenMode::CreateOnly);
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(manager->isSigned(PartName(u"/a.xml")));
    EXPECT_TRUE(manager->getSignatures().empty());
    package->createPart(PartName(u"/_xmlsignatures/sig1.xml"), ContentType(u"a/b"), StandardPartInfo());
    EXPECT_EQ(package->getParts(ExcludeMode::ExcludeManaged).size(), 1U);
}

TEST_F(Loading, readsManyTimesWithoutGrowing) {
    signPart(u"/a.xml");
    const auto load = [this] {
        package->close(false);
        package->open(opc::interfaces::OpenMode::ReadOnly);
        manager->getSignatures();
    };
    load();
    load();
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 100; ++i)
        load();
    EXPECT_LT(mallinfo2().uordblks, before + (1U << 20)) << "documents stay in the parser's pool";
}

TEST_F(Loading, anOriginWithoutSignaturesIsAnUnsignedPackage) {
    package->createPart(PartName(u"/elsewhere.sigs"), ContentType(u"a/b"), StandardPartInfo());
    package->createInternalRelationship(
        u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin",
        URI(u"/elsewhere.sigs"));
    EXPECT_FALSE(manager->isPackageSigned());
    signPart(u"/a.xml");
    EXPECT_FALSE(package->hasPart(PartName(u"/_xmlsignatures/origin.sigs")))
        << "the origin that is there is followed";
    EXPECT_EQ(part(u"/elsewhere.sigs").getRelationships().size(), 1U);
}

} // namespace
