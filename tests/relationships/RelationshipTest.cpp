#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "support/PackageContent.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/RelationshipSelector.hpp>

#include <optional>

namespace {

using namespace opc::model;

const char* const NOT_FOUND = "Relationship ID does not exist";

TEST(Relationship, resolvesInternalTargetsAndKeepsTheText) {
    RelationshipManager manager(URI(u"/a/b.xml"));
    const Relationship relative = manager.addInternalRelationship(u"r1", u"t:t", URI(u"c.xml"));
    const Relationship copy = relative;
    EXPECT_TRUE(relative == copy);
    EXPECT_EQ(relative.getTargetURI().toString(), u"/a/c.xml");
    EXPECT_EQ(relative.getTarget(), u"c.xml");
    EXPECT_TRUE(relative != copy) << "what has been worked out counts";
    EXPECT_EQ(copy.getTargetURI().toString(), u"/a/c.xml");
    EXPECT_TRUE(relative == copy);

    const Relationship absolute = manager.addInternalRelationship(u"r2", u"t:t", URI(u"http://h/x?q#f"));
    EXPECT_EQ(absolute.getTargetURI().toString(), u"http://h/x?q#f");
}

TEST(Relationship, convertsExternalTargetsToASCII) {
    RelationshipManager manager(URI(u"/"));
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"dir\\x", u"dir/x"},
        {u"http://h/é", u"http://h/%C3%A9"},
        {u"a b|c", u"a%20b%7Cc"},
        {u"mailto:a@b", u"mailto:a@b"},
        {u"", u""},
    };
    for (const auto& [target, uri] : cases) {
        const Relationship external = manager.addExternalRelationship(u"r", u"t:t", target);
        EXPECT_EQ(external.getTargetURI(), std::u16string(uri));
        EXPECT_EQ(external.getTargetURI().toString(), uri) << "also the second time";
        EXPECT_EQ(external.getTarget(), target);
    }
    const Relationship bad = manager.addExternalRelationship(u"r", u"t:t", u"a%zz");
    for (int i = 0; i < 2; ++i)
        EXPECT_RAISES(InvalidURI,
                      "Could not successfully convert external target to a URI. Use getTarget() instead.",
                      bad.getTargetURI());
}

TEST(Relationship, isOrderedByIDAlone) {
    RelationshipManager manager(URI(u"/"));
    const auto make = [&](const char16_t* id, const char16_t* type) {
        return manager.addInternalRelationship(id, type, URI(u"x"));
    };
    EXPECT_TRUE(make(u"rId10", u"z:z") < make(u"rId2", u"a:a"));
    EXPECT_TRUE(make(u"B", u"t:t") < make(u"a", u"t:t"));
    EXPECT_FALSE(make(u"a", u"a:a") < make(u"a", u"b:b"));
    EXPECT_TRUE(make(u"a", u"a:a") != make(u"a", u"b:b"));
    EXPECT_TRUE(make(u"a", u"a:a") != make(u"a", u"a:A")) << "types count letter case";
}

TEST(RelationshipManager, changesWhatWasRead) {
    std::optional<RelationshipSerializer> serializer(std::in_place);
    std::optional<RelationshipManager> manager(std::in_place, URI(u"/a/b.xml"));
    const auto ids = [&manager] {
        std::u16string text;
        for (const Relationship& relationship : manager->getRelationships({}))
            text += relationship.getID() + u' ';
        return text;
    };
    const auto document = opc::test::relationships(
        R"(<Relationship Id="rId2" Type="t/b" Target="2.xml"/>)"
        R"(<Relationship Id="rId10" Type="t/a" Target="10.xml" TargetMode="External"/>)"
        R"(<Relationship Id="rId1" Type="t/b" Target="1.xml"/>)");
    for (int i = 0; i < 2; ++i) {
        opc::ByteArrayInAdaptor stream(document);
        manager->read(stream, *serializer);
        EXPECT_EQ(ids(), u"rId1 rId10 rId2 ") << "reading replaces";
        EXPECT_FALSE(manager->isDirty());
        EXPECT_FALSE(manager->hasRelationship(u"rId"));
        EXPECT_FALSE(manager->hasRelationship(u"rId3"));
        EXPECT_RAISES(RelationshipNotFound, NOT_FOUND, manager->deleteRelationship(u"rId3"));
        EXPECT_EQ(ids(), u"rId1 rId10 rId2 ");
        EXPECT_FALSE(manager->isDirty());
        const Relationship first = manager->getRelationship(u"rId1");
        const Relationship second = manager->getRelationshipsByType(u"t/b").back();
        EXPECT_EQ(second.getID(), u"rId2");

        manager->deleteRelationship(u"rId1");
        EXPECT_TRUE(manager->isDirty());
        EXPECT_EQ(manager->addInternalRelationship(u"rId2", u"t/new", URI(u"new.xml")).getType(), u"t/new");
        EXPECT_EQ(manager->getRelationship(u"rId2").getTarget(), u"2.xml") << "the first of an ID stays";
        manager->addInternalRelationship(u"rId0", u"t/new", URI(u"0.xml"));
        manager->addExternalRelationship(u"rId0", u"t/new", u"second.xml");
        EXPECT_EQ(manager->getRelationship(u"rId0").getTarget(), u"0.xml");
        EXPECT_FALSE(manager->hasRelationship(u"RID0"));
        EXPECT_EQ(ids(), u"rId0 rId10 rId2 ");
        EXPECT_EQ(manager->getRelationshipsByType(u"t/b"), std::vector<Relationship>{second});
        EXPECT_EQ(first.getTarget(), u"1.xml");
    }

    // Relationships that were returned depend on nothing else.
    const Relationship kept = manager->getRelationship(u"rId10");
    manager.reset();
    serializer.reset();
    EXPECT_EQ(kept.getID() + u' ' + kept.getType() + u' ' + kept.getTarget(), u"rId10 t/a 10.xml");
    EXPECT_EQ(kept.getTargetMode(), TargetMode::External);
    EXPECT_EQ(kept.getSourceURI(), std::u16string(u"/a/b.xml"));
}

TEST(RelationshipSelector, refusesBadSourcesAndThenEmptyCriteria) {
    const auto select = [](const char16_t* source, const char16_t* criteria) {
        return RelationshipSelector(URI(source), RelationshipSelectorType::SourceId, criteria);
    };
    select(u"/", u"rId1");
    const std::string notRooted =
        "Input sourceURI is incorrect:A part name shall start with a forward slash ('/') character [M1.4]";
    EXPECT_RAISES(InvalidURI, notRooted, select(u"a/b", u"rId1"));
    EXPECT_RAISES(InvalidURI, notRooted, select(u"a/b", u""));
    EXPECT_RAISES(opc::Exception, "SelectionCriteria cannot be empty.", select(u"/a", u""));
    EXPECT_TRUE(select(u"/A.xml", u"r") == select(u"/a.xml", u"r"));
    EXPECT_TRUE(select(u"/a.xml", u"R") != select(u"/a.xml", u"r"));
    EXPECT_TRUE(select(u"/a.xml", u"r") !=
                RelationshipSelector(URI(u"/a.xml"), RelationshipSelectorType::SourceType, u"r"));
}

} // namespace
