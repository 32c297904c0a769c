#include "support/PackageTest.hpp"

/// @file
/// Documents with elements that the model ignores, and the changes that are still possible.

namespace {

using namespace opc::model;
using namespace opc::test;

/// An element that is read unless it has a prefix.
std::string relationship(const std::string& prefix, const std::string& id, const std::string& target) {
    return "<" + prefix + "Relationship Id='" + id + "' Type='urn:t' Target='" + target +
           "' xmlns:p='http://schemas.openxmlformats.org/package/2006/relationships'/>";
}

const std::string LOSS = "a change would lose elements that weren't read, as they have a namespace prefix or "
                         "stand in the wrong place: ";
const std::string TYPES = "opc::model::InvalidContentTypeStream: In content type stream: " + LOSS + "1";
const std::string OF_PACKAGE = "opc::model::InvalidRelationshipContent: In /_rels/.rels: " + LOSS + "1";
const std::string OF_PART = "opc::model::InvalidRelationshipContent: In /_rels/a.xml.rels: " + LOSS + "2";

/// A content types stream, with an ignored entry on demand.
Bytes makeTypes(bool isUnread) {
    const std::string entry = "<p:Override PartName='/c.xml' ContentType='a/b' xmlns:p="
                              "'http://schemas.openxmlformats.org/package/2006/content-types'/>";
    return contentTypes(USUAL_CONTENT_TYPES + (isUnread ? entry : ""));
}

using Content = std::map<std::u16string, Bytes>;

/// A package of parts. One part has relationships that are all read; some of another part and of the package are
/// ignored.
Content makeContent(bool hasUnreadTypes) {
    return {
        {u"types", makeTypes(hasUnreadTypes)},
        {u"/a.xml", {}},
        {u"/b.xml", {}},
        {u"/c.xml", {}},
        {u"/_rels/.rels", relationships(relationship("", "r", "c.xml") + relationship("p:", "x", "b.xml"))},
        {u"/_rels/a.xml.rels",
         relationships(relationship("p:", "x", "b.xml") + relationship("p:", "y", "c.xml"))},
        {u"/_rels/b.xml.rels", relationships(relationship("", "r", "a.xml"))}};
}

void fillStore(MemoryPackage& store, const Content& content) {
    for (const auto& [name, bytes] : content)
        name == u"types" ? store.setContentTypes(bytes) : store.setPart(name, bytes);
}

Content contentOf(const MemoryPackage& store) {
    Content content = {{u"types", store.contentTypes()}};
    for (const std::u16string& name : store.partNames())
        content.emplace(name, store.partBytes(name));
    return content;
}

Part partOf(Package& package, const char16_t* name) {
    return package.getPart(PartName(name));
}

TEST(UnreadElements, areNeverWrittenOver) {
    struct Case {
        void (*action)(Package&);
        std::string outcome;           ///< if all content types are read
        std::string withUnreadTypes;   ///< if one is ignored
        std::set<std::u16string> gone; ///< what is changed or deleted if nothing refuses it
    };
    const Case cases[] = {
        {[](Package& p) { p.createPart(PartName(u"/n.xml"), ContentType(u"a/b"), StandardPartInfo()); },
         "",
         TYPES,
         {u"types"}},
        {[](Package& p) { p.deletePart(PartName(u"/a.xml")); }, "", TYPES, {u"/a.xml", u"/_rels/a.xml.rels"}},
        {[](Package& p) { p.createInternalRelationship(u"urn:t", URI(u"/c.xml")); },
         OF_PACKAGE,
         OF_PACKAGE,
         {}},
        {[](Package& p) { p.deleteRelationship(u"r"); }, OF_PACKAGE, OF_PACKAGE, {}},
        {[](Package& p) { partOf(p, u"/a.xml").createExternalRelationship(u"urn:t", u"u:v"); },
         OF_PART,
         OF_PART,
         {}},
        {[](Package& p) { partOf(p, u"/a.xml").deleteRelationship(u"x"); }, OF_PART, OF_PART, {}},
        {[](Package& p) { partOf(p, u"/b.xml").createExternalRelationship(u"urn:t", u"u:v"); },
         "",
         "",
         {u"/_rels/b.xml.rels"}},
        {[](Package& p) { partOf(p, u"/b.xml").deleteRelationship(u"r"); },
         "",
         TYPES,
         {u"/_rels/b.xml.rels"}},
        {[](Package& p) { partOf(p, u"/c.xml").createExternalRelationship(u"urn:t", u"u:v"); },
         "",
         TYPES,
         {}},
        {[](Package& p) { PackageHelper::createOrUpdateCoreProperties(p, CoreProperties()); },
         OF_PACKAGE,
         OF_PACKAGE,
         {}},
        {[](Package& p) { PackageHelper::deleteRelationshipsAndTargets(p, u"urn:t"); },
         OF_PACKAGE,
         TYPES,
         {}},
        {[](Package& p) {
             Part part = partOf(p, u"/b.xml");
             PackageHelper::deleteRelationshipsAndTargets(p, part, u"urn:t");
         },
         "",
         TYPES,
         {u"/a.xml", u"/_rels/a.xml.rels", u"/_rels/b.xml.rels"}},
        {[](Package& p) { writeAll(partOf(p, u"/a.xml"), "new"); }, "", "", {u"/a.xml"}},
    };
    for (const bool hasUnreadTypes : {false, true}) {
        for (const Case& each : cases) {
            const auto label = testing::Message() << "case " << &each - cases;
            const std::string& outcome = hasUnreadTypes ? each.withUnreadTypes : each.outcome;
            const Content before = makeContent(hasUnreadTypes);
            MemoryPackage store;
            fillStore(store, before);
            Package package(store);
            package.open(OpenMode::ReadWrite);
            EXPECT_EQ(package.hasUnreadContentTypes(), hasUnreadTypes);
            EXPECT_TRUE(package.hasUnreadRelationships());
            EXPECT_FALSE(partOf(package, u"/b.xml").hasUnreadRelationships());
            EXPECT_EQ(outcomeOf([&] { each.action(package); }), outcome) << label;
            package.close(false);
            const Content after = contentOf(store);
            if (!outcome.empty()) {
                EXPECT_EQ(after, before) << label;
                continue;
            }
            for (const auto& [name, bytes] : before) {
                const bool stays = after.count(name) != 0 && after.at(name) == bytes;
                EXPECT_NE(stays, each.gone.count(name) != 0) << label << ", " << opc::toUDEString(name);
            }
            package.open(OpenMode::ReadOnly);
        }
    }
}

TEST(UnreadElements, areNotLostWithAPartWhoseDeletionHalfFails) {
    MemoryPackage store;
    fillStore(store, makeContent(false));
    ScriptedPackage physical(store);
    Package package(physical);
    package.open(OpenMode::ReadWrite);
    physical.failAt("deletePart /a.xml", "stuck");
    EXPECT_RAISES(PartDeleteFailed, "stuck", package.deletePart(PartName(u"/a.xml")));
    EXPECT_EQ(outcomeOf([&] { package.close(false); }), OF_PART)
        << "the part stays, but not its relationships";
    physical.forgetScript();
    package.deletePart(PartName(u"/a.xml"));
    package.close(false);
    EXPECT_FALSE(store.hasPart(u"/a.xml"));
}

} // namespace
