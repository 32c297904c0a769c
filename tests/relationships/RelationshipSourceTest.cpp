#include "support/Cases.hpp"
#include "support/PackageTest.hpp"

#include <opc/interfaces/IKeptRelationships.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

class RelationshipSources : public PackageTest {
protected:
    RelationshipSources() : PackageTest({u"/a/b.xml", u"/c.xml"}) {}

    Part open(OpenMode mode = OpenMode::ReadWrite) {
        package.open(mode);
        return package.getPart(PartName(u"/a/b.xml"));
    }

    static std::vector<std::u16string> ids(const RelationshipSource& source) {
        std::vector<std::u16string> result;
        for (const Relationship& relationship : source.getRelationships())
            result.push_back(relationship.getID());
        return result;
    }
};

TEST_F(RelationshipSources, storeTheRelativeFormOfInternalTargets) {
    Part part = open();
    forEachCase("relationships/internal-targets.txt",
                [&part](const std::u16string& target, const std::u16string& stored) {
                    EXPECT_EQ(part.createInternalRelationship(u"t:t", URI(target)).getTarget(), stored);
                });
    EXPECT_EQ(package.createInternalRelationship(u"t:t", URI(u"/a/b.xml")).getTarget(), u"a/b.xml");
}

TEST_F(RelationshipSources, refuseBadInternalTargets) {
    Part part = open();
    const auto create = [&](const std::u16string& target) {
        part.createInternalRelationship(u"", URI(target), u"1");
    };
    forEachCase("relationships/internal-targets-refused.txt",
                [&](const std::string& message, const std::u16string& target) {
                    EXPECT_RAISES(InvalidRelationshipTarget, message, create(target));
                });
    EXPECT_RAISES(UnsupportedRelativize, "URI's paths must be different.", create(u"/a/b.xml"));
    EXPECT_RAISES(InvalidRelationshipTarget,
                  "External relationship target is not a valid xsd::anyURI. See http://www.w3.org/TR/leiri/.",
                  part.createExternalRelationship(u"", u"%", u"1"));
    EXPECT_TRUE(part.getRelationships().empty());
    EXPECT_EQ(physical.countCalls("createPart"), 0U);
}

TEST_F(RelationshipSources, checkTypeAndThenID) {
    Part part = open();
    part.createExternalRelationship(u"t:t", u"x", u"used");
    const auto create = [&](const char16_t* type, const char16_t* id) {
        part.createExternalRelationship(type, u"x", id);
    };
    EXPECT_RAISES(InvalidRelationshipType, "Relationship type must not be empty.", create(u"", u"1"));
    EXPECT_RAISES(InvalidRelationshipType, "Relationship type is not a valid xsd::anyURI",
                  create(u"é", u"1"));
    EXPECT_RAISES(InvalidRelationshipID, "Relationship ID is not a valid xsd::ID", create(u"t:t", u"1"));
    EXPECT_RAISES(RelationshipAlreadyExists, "Relationship ID already exists", create(u"t:t", u"used"));
    create(u"t:t", u"Used");
}

TEST_F(RelationshipSources, giveTheirRelationshipsOtherTargets) {
    Part part = open();
    const Relationship old = part.createInternalRelationship(u"t:t", URI(u"/c.xml"), u"i");
    const auto set = [&part](const char16_t* id, const char16_t* target) {
        return part.setInternalTarget(id, URI(target));
    };
    EXPECT_RAISES(RelationshipNotFound, "Relationship ID does not exist", set(u"I", u"/c.xml"));
    EXPECT_RAISES(InvalidRelationshipTarget, "Relationship target cannot be a relationship part name.",
                  set(u"i", u"/_rels/c.xml.rels"));
    EXPECT_RAISES(InvalidRelationshipTarget, "Relationship target is not a valid xsd::anyURI",
                  set(u"i", u"d  e"));
    EXPECT_RAISES(InvalidRelationshipTarget, "Relationship target must not be empty.",
                  part.setExternalTarget(u"i", u""));
    EXPECT_EQ(set(u"i", u"/a/d.xml").getTarget(), u"d.xml");
    EXPECT_EQ(part.setExternalTarget(u"i", u"x:y").getType(), u"t:t");
    package.close(false);
    part = open(OpenMode::ReadOnly);
    EXPECT_EQ(part.getRelationshipByID(u"i").getTarget(), u"x:y");
    EXPECT_EQ(part.getRelationshipByID(u"i").getTargetMode(), TargetMode::External);
    EXPECT_EQ(old.getTarget(), u"../c.xml") << "as it was when it was returned";
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", part.setExternalTarget(u"i", u"z"));
}

TEST_F(RelationshipSources, validIDsAreNamesWithoutColonOrSurrogates) {
    forEachCase("relationships/ids.txt", [](const std::string& validity, const std::u16string& id) {
        EXPECT_EQ(RelationshipSource::isValidID(id), validity == "valid");
    });
}

TEST_F(RelationshipSources, generatedIDsAreNeverUsedTwice) {
    store.setPart(u"/_rels/c.xml.rels", relationships(R"(<Relationship Id="rId1" Type="t:t" Target="x"/>)"
                                                      R"(<Relationship Id="rId3" Type="t:t" Target="x"/>)"));
    Part part = open();
    Part read = package.getPart(PartName(u"/c.xml"));
    EXPECT_EQ(read.createExternalRelationship(u"t:t", u"x").getID(), u"rId2");
    EXPECT_EQ(read.createExternalRelationship(u"t:t", u"x").getID(), u"rId4");

    EXPECT_EQ(part.createExternalRelationship(u"t:t", u"x").getID(), u"rId1");
    part.deleteRelationship(u"rId1");
    EXPECT_EQ(part.createExternalRelationship(u"t:t", u"x").getID(), u"rId2");
    part.createExternalRelationship(u"t:t", u"x", u"Z");
    part.createExternalRelationship(u"t:t", u"x", u"a");
    for (int i = 3; i <= 10; ++i)
        part.createExternalRelationship(u"t:t", u"x");
    const auto all = ids(part);
    EXPECT_EQ(all.front(), u"Z");
    EXPECT_EQ(all[2], u"rId10") << "code unit by code unit";
    EXPECT_EQ(all[3], u"rId2");
}

TEST_F(RelationshipSources, aNumberSpentOnARefusedRelationshipIsNotGivenBack) {
    package.open(OpenMode::ReadWrite);
    const std::u16string core = PackageHelper::getCorePropertiesRelationshipType();
    EXPECT_EQ(package.createInternalRelationship(core, URI(u"x.xml")).getID(), u"rId1");
    EXPECT_RAISES(InvalidCorePropertiesRelationships,
                  "No more than one core properties relationship can exist in a package",
                  package.createInternalRelationship(core, URI(u"y.xml")));
    EXPECT_EQ(package.createInternalRelationship(u"t:t", URI(u"y.xml")).getID(), u"rId3");
}

TEST_F(RelationshipSources, thePartComesWithTheFirstAndGoesWithTheLast) {
    Part part = open();
    part.createExternalRelationship(u"t:t", u"x", u"a");
    part.createExternalRelationship(u"t:t", u"x", u"b");
    EXPECT_EQ(physical.countCalls(
                  "createPart /a/_rels/b.xml.rels application/vnd.openxmlformats-package.relationships+xml"),
              1U);
    EXPECT_FALSE(package.hasPart(PartName(u"/a/_rels/b.xml.rels"))) << "it is no part of its own";
    part.deleteRelationship(u"a");
    EXPECT_EQ(physical.countCalls("deletePart"), 0U);
    part.deleteRelationship(u"b");
    EXPECT_EQ(physical.countCalls("deletePart /a/_rels/b.xml.rels"), 1U);
    part.createExternalRelationship(u"t:t", u"x", u"c");
    EXPECT_EQ(physical.countCalls("createPart /a/_rels/b.xml.rels"), 2U);

    physical.failAt("deletePart", "stuck");
    EXPECT_RAISES(PartDeleteFailed, "stuck", part.deleteRelationship(u"c"));
    EXPECT_FALSE(part.hasRelationship(u"c"));
    EXPECT_RAISES(RelationshipNotFound, "Relationship ID does not exist", part.deleteRelationship(u"c"));
}

TEST_F(RelationshipSources, guardsStandInFrontOfTheArguments) {
    const auto create = [this] { package.createInternalRelationship(u"", URI(u"http://h/"), u"1"); };
    const auto remove = [this] { package.deleteRelationship(u"none"); };
    EXPECT_RAISES(PackageNotOpen, "Package is not open", create());
    EXPECT_RAISES(PackageNotOpen, "Package is not open", package.hasRelationship(u"x"));
    package.open(OpenMode::ReadOnly);
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", create());
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", remove());
    EXPECT_FALSE(package.hasRelationship(u"x"));
    package.close(false);
    package.open(OpenMode::CreateOnly);
    EXPECT_RAISES(PackageCreateOnly, "Package is open only for create", remove());
    EXPECT_RAISES(RelationshipNotFound, "Relationship ID does not exist",
                  package.getRelationshipByID(u"none"));
    package.close(true);
    package.open(OpenMode::ReadWrite);
    Part part = package.getPart(PartName(u"/c.xml"));
    package.deletePart(PartName(u"/c.xml"));
    EXPECT_RAISES(InvalidObject, "Object is no longer valid", part.createExternalRelationship(u"", u"%"));
}

TEST_F(RelationshipSources, whatWasHandedOutOutlivesItsSource) {
    Part part = open();
    Part copy = part;
    const Relationship relationship = part.createInternalRelationship(u"t:t", URI(u"x.xml"));
    EXPECT_EQ(ids(copy), ids(part)) << "copies share one set";
    package.close(false);
    EXPECT_EQ(relationship.getTargetURI().toString(), u"/a/x.xml");
    EXPECT_EQ(relationship.getSourceURI().toString(), u"/a/b.xml");
    EXPECT_EQ(open(OpenMode::ReadOnly).getRelationshipByID(u"rId1").getTarget(), u"x.xml");
}

TEST_F(RelationshipSources, aPartWithoutRelationshipsIsReplacedByTheFirst) {
    store.setPart(u"/a/_rels/b.xml.rels", relationships(""));
    Part part = open();
    part.createExternalRelationship(u"t:t", u"dir\\x");
    package.close(false);
    EXPECT_EQ(open().getRelationshipByID(u"rId1").getTarget(), u"dir\\x");
}

TEST_F(RelationshipSources, whatReadingRefusesIsNotCreated) {
    Part part = open();
    const auto create = [&](const char16_t* type, const char16_t* target, const char16_t* id) {
        part.createExternalRelationship(type, target, id);
    };
    const char* const badTarget =
        "External relationship target is not a valid xsd::anyURI. See http://www.w3.org/TR/leiri/.";
    for (const char16_t* target :
         {u"mailto:", u"http:", u"C:", u"dir\\a:b", u" ", u"a ", u"a  b", u"a\tb", u"http://h:x"})
        EXPECT_RAISES(InvalidRelationshipTarget, badTarget, create(u"t:t", target, u"a"));
    EXPECT_RAISES(InvalidRelationshipTarget, "Relationship target must not be empty.",
                  create(u"t:t", u"", u"a"));
    EXPECT_RAISES(InvalidRelationshipTarget, "Relationship target is not a valid xsd::anyURI",
                  part.createInternalRelationship(u"t:t", URI(u"a  b")));
    for (const char16_t* type : {u" ", u"t ", u"t:", u"a\nb"})
        EXPECT_RAISES(InvalidRelationshipType, "Relationship type is not a valid xsd::anyURI",
                      create(type, u"C:", u"a"));
    EXPECT_EQ(physical.countCalls("createPart"), 0U);
    EXPECT_EQ(part.createExternalRelationship(u"t:t", u"x").getID(), u"rId1") << "no number has been spent";
}

TEST_F(RelationshipSources, aPartThatWasOpenedIsNotReplacedByARelationshipsPart) {
    store.setPart(u"/_Rels/.Rels", toBytes("content"));
    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(PartAlreadyExists, "Cannot use a part name that already exists: /_rels/.rels",
                  package.createExternalRelationship(u"t:t", u"x"));
    EXPECT_TRUE(package.getRelationships().empty());
    EXPECT_EQ(readAll(package.getPart(PartName(u"/_Rels/.Rels"))), "content");
}

/// Makes the relationships part of /c.xml one that keeps something to itself.
class KeepingPackage : public ScriptedPackage {
public:
    using ScriptedPackage::ScriptedPackage;

    std::vector<opc::interfaces::IPhysicalPart*> getParts() override {
        auto parts = ScriptedPackage::getParts();
        for (auto*& part : parts)
            if (part->getName() == u"/_rels/c.xml.rels")
                part = &keeping.emplace(*part, *this);
        return parts;
    }

    bool keepsMore = true;
    std::string reason;

private:
    class KeepingPart : public opc::interfaces::IPhysicalPart, public opc::interfaces::IKeptRelationships {
    public:
        KeepingPart(opc::interfaces::IPhysicalPart& part, const KeepingPackage& package)
            : part(part), package(package) {}

        std::u16string getName() const override { return part.getName(); }
        std::u16string getContentType() const override { return part.getContentType(); }
        opc::interfaces::IPhysicalInputStream* getInputStream() override { return part.getInputStream(); }
        opc::interfaces::IPhysicalOutputStream* getOutputStream() override { return part.getOutputStream(); }
        bool hasKeptID(const std::u16string& id) const override { return id == u"rId1" || id == u"kept"; }
        bool keepsMore() const override { return package.keepsMore; }
        std::string whyFixed() const override { return package.reason; }

    private:
        opc::interfaces::IPhysicalPart& part;
        const KeepingPackage& package;
    };

    std::optional<KeepingPart> keeping;
};

class KeptRelationships : public testing::Test {
protected:
    KeptRelationships() : physical(store), package(physical) {
        fill(store, {u"/c.xml"});
        store.setPart(NAME, relationships(R"(<Relationship Id="r" Type="t:t" Target="x"/>)"));
    }

    Part open() {
        package.open(OpenMode::ReadWrite);
        return package.getPart(PartName(u"/c.xml"));
    }

    static constexpr char16_t NAME[] = u"/_rels/c.xml.rels";
    opc::physical::MemoryPackage store;
    KeepingPackage physical;
    Package package;
};

TEST_F(KeptRelationships, useTheirIDsAndHoldThePart) {
    Part part = open();
    EXPECT_TRUE(part.hasUnreadRelationships());
    EXPECT_RAISES(RelationshipAlreadyExists, "Relationship ID already exists",
                  part.createExternalRelationship(u"t:t", u"x", u"kept"));
    EXPECT_EQ(part.createExternalRelationship(u"t:t", u"x").getID(), u"rId2");
    part.deleteRelationship(u"rId2");
    part.deleteRelationship(u"r");
    package.close(false);
    EXPECT_EQ(physical.countCalls("deletePart"), 0U);

    part = open();
    EXPECT_TRUE(part.getRelationships().empty()) << "written without any";
    part.createExternalRelationship(u"t:t", u"x", u"new");
    package.close(false);
    EXPECT_EQ(physical.countCalls("createPart"), 0U) << "a new part would replace it";
    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/c.xml"));
    EXPECT_EQ(physical.countCalls("deletePart /_rels/c.xml.rels"), 1U) << "it goes with its source";
}

TEST_F(KeptRelationships, canForbidChanges) {
    physical.reason = "no XML";
    Part part = open();
    const char* const message = "In /_rels/c.xml.rels: no XML";
    EXPECT_RAISES(InvalidRelationshipContent, message, part.createExternalRelationship(u"t:t", u"%"));
    EXPECT_RAISES(InvalidRelationshipContent, message, part.createInternalRelationship(u"t:t", URI(u"h:")));
    EXPECT_RAISES(InvalidRelationshipContent, message, part.deleteRelationship(u"r"));
    package.deletePart(PartName(u"/c.xml"));
    package.close(false);
    EXPECT_FALSE(store.hasPart(NAME));
}

TEST_F(KeptRelationships, areNotLostWithAPartWhoseDeletionHalfFails) {
    open();
    physical.failAt("deletePart /c.xml", "stuck");
    EXPECT_RAISES(PartDeleteFailed, "stuck", package.deletePart(PartName(u"/c.xml")));
    EXPECT_RAISES(InvalidRelationshipContent,
                  "In /_rels/c.xml.rels: its relationships that couldn't be read have been deleted with it",
                  package.close(false));
    package.close(true);
    physical.forgetScript();
    open().deleteRelationship(u"r");
}

} // namespace
