#include "support/Cases.hpp"
#include "support/PackageTest.hpp"

#include <algorithm>

namespace {

using namespace opc::model;
using namespace opc::test;

class PackageParts : public PackageTest {
protected:
    Part create(const char16_t* name) {
        return package.createPart(PartName(name), ContentType(u"application/xml"), StandardPartInfo());
    }
};

TEST_F(PackageParts, guardsStandInFrontOfTheArguments) {
    const PartName rels(u"/_rels/.rels");
    const PartName name(u"/a.xml");
    const auto createRels = [&] { package.createPart(rels, ContentType(u"a/b"), StandardPartInfo()); };
    const auto deleteIt = [&] { package.deletePart(name); };

    EXPECT_RAISES(PackageNotOpen, "Package is not open", createRels());
    EXPECT_RAISES(PackageNotOpen, "Package is not open", deleteIt());
    EXPECT_RAISES(PackageNotOpen, "Package is not open", package.getPart(name));
    EXPECT_RAISES(PackageNotOpen, "Package is not open", package.hasPart(name));

    package.open(OpenMode::ReadOnly);
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", createRels());
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", deleteIt());
    EXPECT_RAISES(PartNotFound, "No part found with the name:/a.xml", package.getPart(name));
    package.close(false);

    package.open(OpenMode::CreateOnly);
    EXPECT_RAISES(PartHasRelationshipName, "Cannot use a part name that is a relationship name: /_rels/.rels",
                  createRels());
    EXPECT_RAISES(PackageCreateOnly, "Package is open only for create", deleteIt());
    package.close(false);

    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(PartNotFound, "No part found with the name:/a.xml", deleteIt());
}

TEST_F(PackageParts, namesMustNotConflict) {
    package.open(OpenMode::ReadWrite);
    create(u"/a/b");
    create(u"/C/D/e.xml");
    create(u"/C/D/f.xml");
    forEachCase("packages/names-taken.txt", [this](const std::u16string& name, const std::string& outcome) {
        EXPECT_EQ(outcomeOf([&] { create(name.c_str()); }), "opc::model::" + outcome);
    });
    for (const char16_t* name : {u"/a/bc", u"/a/b.c", u"/ab", u"/c/d2", u"/C/D/e"})
        create(name);

    std::u16string existing = u"untouched";
    EXPECT_FALSE(package.isPartDerivedFromExistingPartName(PartName(u"/a/b"), existing));
    EXPECT_EQ(existing, u"untouched");
    EXPECT_TRUE(package.isPartDerivedFromExistingPartName(PartName(u"/A/B/C"), existing));
    EXPECT_EQ(existing, u"/a/b");
    EXPECT_TRUE(package.isPartDerivedFromExistingPartName(PartName(u"/C/d"), existing));
    EXPECT_EQ(existing, u"/c/d") << "of names below, what they have in common";

    package.deletePart(PartName(u"/c/d/E.XML"));
    package.deletePart(PartName(u"/c/d/e"));
    EXPECT_THROW(create(u"/c/D"), PartIsDerivedFromExistingPartName) << "/C/D/f.xml is still there";
    package.deletePart(PartName(u"/c/d/f.xml"));
    create(u"/c/D");
}

TEST_F(PackageParts, namesOfNewPartsComeBackFromAnyStore) {
    package.open(OpenMode::ReadWrite);
    forEachCase("packages/names-refused.txt", [this](const std::string& outcome, const std::u16string& name) {
        EXPECT_EQ(outcomeOf([&] { create(name.c_str()); }),
                  "opc::model::" + outcome + (outcome.back() == ':' ? " " + opc::toUDEString(name) : ""));
    });
    EXPECT_EQ(physical.countCalls("createPart"), 0U);
    create(u"/-._~!$&'()*+,;=:@%25");
}

TEST_F(PackageParts, partsThatWereOpenedKeepTheirNames) {
    fill(store, {u"/a b.xml", u"/c|d.xml"});
    package.open(OpenMode::ReadWrite);
    for (Part part : package.getParts()) {
        part.createExternalRelationship(u"t:t", u"x");
        writeAll(part, "new");
    }
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getParts().size(), 2U);
    for (const Part& part : package.getParts()) {
        EXPECT_EQ(part.getRelationships().size(), 1U);
        EXPECT_EQ(readAll(part), "new");
    }
}

TEST_F(PackageParts, contentTypesOfNewPartsCanBeReadAgain) {
    const std::tuple<const char16_t*, const char16_t*, bool> cases[] = {
        {u"a\"b", u"x", false}, {u"x y\";d=\"z w", u"x", false}, {u"\\", u"x y", false},
        {u"\\", u"x", true},    {u"x\\y", u"x y", true},         {u"\\\\", u"\\", false},
    };
    for (const auto& [value, other, isAccepted] : cases) {
        ContentType type(u"a/b");
        type.addParameter(u"c", value);
        type.addParameter(u"e", other);
        package.open(OpenMode::CreateOnly);
        const auto outcome =
            outcomeOf([&] { package.createPart(PartName(u"/a"), type, StandardPartInfo()); });
        package.close(false);
        EXPECT_EQ(outcome,
                  isAccepted
                      ? ""
                      : "opc::model::InvalidContentType: Could not successfully parse content type string");
        package.open(OpenMode::ReadOnly);
        for (const Part& part : package.getParts())
            EXPECT_EQ(part.getContentType().getParameterValue(u"c"), value);
        package.close(false);
    }
}

TEST_F(PackageParts, namesThatWereReadCountWheneverTheyAreAskedFor) {
    fill(store, {u"/a/b.xml", u"/a/c.xml"});
    std::u16string existing;
    const auto isTaken = [&](const char16_t* name) {
        return package.isPartDerivedFromExistingPartName(PartName(name), existing);
    };
    EXPECT_FALSE(isTaken(u"/a")) << "a package that isn't open has no parts";
    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/A/b.xml")); // before the first query
    EXPECT_TRUE(isTaken(u"/a"));
    EXPECT_FALSE(isTaken(u"/a/b.xml/x"));
    package.deletePart(PartName(u"/a/c.xml"));
    EXPECT_FALSE(isTaken(u"/a"));
    create(u"/a");
    EXPECT_TRUE(isTaken(u"/a/b.xml"));
    package.close(true);
    EXPECT_FALSE(isTaken(u"/a/b.xml"));
    package.open(OpenMode::ReadWrite);
    EXPECT_TRUE(isTaken(u"/a"));
    EXPECT_FALSE(isTaken(u"/a/d.xml"));
}

TEST_F(PackageParts, aDeletionThatHalfFailedCanBeTriedAgain) {
    const PartName name(u"/a.xml");
    const auto failAndReopen = [&](const std::string& call, const std::string& message) {
        physical.forgetScript();
        physical.failAt("deletePart " + call, message);
        package.open(OpenMode::ReadWrite);
    };
    const auto attempt = [&] { package.deletePart(PartName(u"/A.xml")); };
    package.open(OpenMode::ReadWrite);
    Part part = create(u"/a.xml");
    part.createExternalRelationship(u"t:t", u"x");
    physical.failAt("deletePart /a.xml", "first");
    physical.failAt("deletePart /_rels/a.xml.rels", "second");
    EXPECT_RAISES(PartDeleteFailed, "first; second", attempt()) << "each is tried";
    writeAll(part, "still there");
    package.close(false);
    EXPECT_EQ(store.partNames().size(), 2U);

    failAndReopen("/a.xml", "first");
    EXPECT_RAISES(PartDeleteFailed, "first", attempt());
    EXPECT_EQ(package.getPart(name).getRelationships().size(), 1U);
    package.close(false);
    EXPECT_TRUE(store.hasPart(u"/_rels/a.xml.rels")) << "no relationship is lost with the part that held it";

    failAndReopen("/_rels/a.xml.rels", "second");
    part = package.getPart(name);
    opc::InputStream& input = part.getInputStream();
    opc::OutputStream& output = part.getOutputStream();
    EXPECT_RAISES(PartDeleteFailed, "second", attempt());
    EXPECT_TRUE(package.hasPart(name));
    unsigned char byte = 0;
    const std::function<void()> operations[] = {
        [&] { part.getInputStream(); },  [&] { part.getOutputStream(); }, [&] { input.open(); },
        [&] { input.read(&byte, 1); },   [&] { input.isDone(); },         [&] { input.close(); },
        [&] { output.write(&byte, 1); }, [&] { output.isDone(); },        [&] { output.flush(); },
        [&] { output.close(); },         [&] { part.getSize(); },
    };
    for (const auto& operation : operations)
        EXPECT_RAISES(InvalidPartStream, "The part's content has been deleted", operation());
    physical.forgetScript();
    attempt();
    EXPECT_THROW(input.isDone(), InvalidPartStream);
    package.close(false);
    EXPECT_TRUE(store.partNames().empty());
}

TEST_F(PackageParts, aStoreThatBreaksItsPromisesIsFoundOut) {
    const std::string noStream = "InvalidPartStream: The physical layer gives no stream";
    const std::string relationship = R"(<Relationship Id="r" Type="t:t" Target="a"/>)";
    const std::pair<const char*, std::string> nulls[] = {
        {"getParts", "PackageOpenFailed: The physical layer lists a part that it doesn't give"},
        {"getContentTypeInputStream", noStream},
        {"getInputStream /_rels/a.xml.rels", noStream},
        {"getInputStream /_rels/.rels", noStream},
        {"createPart", "PartCreateFailed: The physical layer gives no part"},
        {"getInputStream /a.xml", noStream},
        {"getOutputStream /a.xml", noStream},
        {"getContentTypeOutputStream", noStream},
        {"getOutputStream /_rels/a.xml.rels", noStream},
        {"getOutputStream /_rels/.rels", noStream},
    };
    const auto live = [this] {
        package.open(OpenMode::ReadWrite);
        create(u"/b.new");
        Part part = package.getPart(PartName(u"/a.xml"));
        part.getInputStream();
        part.getOutputStream();
        part.createExternalRelationship(u"t:t", u"x");
        package.createExternalRelationship(u"t:t", u"x");
        package.close(false);
    };
    fill(store, {u"/a.xml"});
    for (const char16_t* name : {u"/_rels/a.xml.rels", u"/_rels/.rels"})
        store.setPart(name, relationships(relationship));
    for (const auto& [call, outcome] : nulls) {
        physical.nullAt = call;
        EXPECT_EQ(outcomeOf(live), "opc::model::" + outcome) << call;
        package.close(true);
    }
    physical.nullAt.clear();

    physical.unwritten = 1;
    EXPECT_EQ(outcomeOf(live).substr(0, 41), "opc::Exception: The physical layer has wr")
        << "in content types";
    physical.unwritten = 0;
    package.close(false);
    package.open(OpenMode::ReadWrite);
    opc::OutputStream& stream = package.getPart(PartName(u"/a.xml")).getOutputStream();
    physical.unwritten = 2;
    const std::string message = "The physical layer has written 3 of 5 bytes";
    EXPECT_RAISES(opc::Exception, message, stream.write(toBytes("bytes").data(), 5));
}

TEST_F(PackageParts, aPartWhoseContentTypeIsMissingGoesWithoutHarm) {
    // A store that spells a name in another way than it was created.
    class Respelling : public ScriptedPackage {
    public:
        using ScriptedPackage::ScriptedPackage;
        opc::interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& type,
                                                   const opc::interfaces::IPhysicalPartInfo& info) override {
            return ScriptedPackage::createPart(name == u"/a" ? u"/other" : name, type, info);
        }
    };
    Respelling respelling(store);
    Package other(respelling);
    other.open(OpenMode::ReadWrite);
    const Part part = other.createPart(PartName(u"/a"), ContentType(u"a/b"), StandardPartInfo());
    EXPECT_RAISES(ContentTypeNotFound, "No content type was found for part:/other",
                  other.deletePart(PartName(u"/a")));
    EXPECT_RAISES(InvalidPartStream, "The part's content has been deleted", part.getInputStream());
    other.deletePart(PartName(u"/a"));
}

TEST_F(PackageParts, deletionTakesTheRelationshipsAndTheStoredSpelling) {
    store.setPart(u"/a.xml", {});
    package.open(OpenMode::ReadWrite);
    package.getPart(PartName(u"/a.xml")).createExternalRelationship(u"t:t", u"x");
    const auto before = package.getParts();
    package.deletePart(PartName(u"/A.xml"));
    EXPECT_EQ(physical.countCalls("deletePart /a.xml"), 1U);
    EXPECT_EQ(physical.countCalls("deletePart /_rels/a.xml.rels"), 1U);
    EXPECT_EQ(before.size(), 1U) << "it was taken before";
    EXPECT_TRUE(package.getParts().empty());
    package.close(false);
    EXPECT_TRUE(store.partNames().empty());
}

TEST_F(PackageParts, aPartHasOneStreamOfEachKind) {
    store.setPart(u"/a.xml", toBytes("old"));
    package.open(OpenMode::ReadWrite);
    const Part part = package.getPart(PartName(u"/a.xml"));
    const Part copy = package.getPart(PartName(u"/a.xml"));

    EXPECT_EQ(&part.getInputStream(), &copy.getInputStream());
    EXPECT_EQ(&part.getOutputStream(), &copy.getOutputStream());
    EXPECT_EQ(physical.countCalls("getInputStream /a.xml"), 1U);
    EXPECT_EQ(physical.countCalls("getOutputStream /a.xml"), 1U);
    writeAll(part, "dropped");
    EXPECT_EQ(&part.restartOutputStream(), &copy.getOutputStream());
    writeAll(part, "kept");
    package.close(false);
    EXPECT_EQ(toText(store.partBytes(u"/a.xml")), "kept");
    store.setPart(u"/a.xml", toBytes("old"));

    package.open(OpenMode::ReadOnly);
    const Part readOnly = package.getPart(PartName(u"/a.xml"));
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", readOnly.getOutputStream());
    EXPECT_EQ(readAll(readOnly), "old");
    readOnly.getInputStream().close();
    readOnly.getInputStream().open();
    EXPECT_EQ(readAll(readOnly), "old");
    package.close(true);
    EXPECT_RAISES(InvalidObject, "Object is no longer valid", readOnly.getOutputStream())
        << "what has gone isn't read-only";
}

TEST_F(PackageParts, sizesAreTheStoresAndNothingIsReadForThem) {
    store.setPart(u"/a.xml", toBytes("old"));
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getPart(PartName(u"/a.xml")).getSize(), std::nullopt) << "a store that tells none";
    EXPECT_EQ(physical.countCalls("getInputStream /a.xml"), 0U);
    package.close(true);

    Package sized(store);
    sized.open(OpenMode::ReadWrite);
    Part part = sized.getPart(PartName(u"/a.xml"));
    EXPECT_EQ(part.getSize(), 3U);
    writeAll(part, "newer");
    EXPECT_EQ(part.getSize(), 5U);
}

TEST_F(PackageParts, theOrderInTheStoreDoesNotCount) {
    std::vector<std::u16string> names{u"/A.xml", u"/B.xml", u"/b/c.xml", u"/c.xml", u"/d.xml", u"/e.xml"};
    const std::vector<std::u16string> expected = names;
    do {
        MemoryPackage shuffled;
        fill(shuffled, names);
        Package found(shuffled);
        found.open(OpenMode::ReadOnly);
        std::vector<std::u16string> listed;
        for (const Part& part : found.getParts())
            listed.push_back(part.getName().toString());
        ASSERT_EQ(listed, expected);
    } while (std::next_permutation(names.begin(), names.end()));
}

TEST_F(PackageParts, whatTheStoreListsTwiceIsOnePart) {
    // A store other than MemoryPackage may list two parts whose names differ only in letter case: the last one
    // counts.
    store.setPart(u"/a.xml", toBytes("first"));
    MemoryPackage other;
    fill(other, {});
    other.setPart(u"/A.xml", toBytes("second"));
    other.open(OpenMode::ReadOnly);

    class TwoStores : public ScriptedPackage {
    public:
        TwoStores(MemoryPackage& one, MemoryPackage& second) : ScriptedPackage(one), second(second) {}
        std::vector<opc::interfaces::IPhysicalPart*> getParts() override {
            auto parts = ScriptedPackage::getParts();
            parts.push_back(second.getParts().front());
            return parts;
        }
        MemoryPackage& second;
    };
    TwoStores both(store, other);
    Package merged(both);
    merged.open(OpenMode::ReadOnly);
    ASSERT_EQ(merged.getParts().size(), 1U);
    const Part part = *merged.getParts().begin();
    EXPECT_EQ(readAll(part), "second");
    EXPECT_EQ(part.getName().toString(), u"/a.xml") << "the first spelling stays";
}

} // namespace
