#include "PhysicalSupport.hpp"
#include "support/Cases.hpp"
#include "support/Encodings.hpp"
#include "support/PackageTest.hpp"
#include "support/Texts.hpp"

#include <opc/physical/LenientPackage.hpp>

namespace {

using namespace opc::test;
using opc::interfaces::IPhysicalPackage;
using opc::model::InvalidRelationshipContent;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;

const std::string URI = "'http://schemas.openxmlformats.org/package/2006/relationships'";
const std::string CORE =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const std::string RELATIONSHIPS_START = "<Relationships xmlns=" + URI + ">";
const std::string END = "</Relationships>";
const std::string GOOD = "<Relationship Id='a' Type='urn:t' Target='a.xml'/>";
constexpr char16_t ROOT_PART[] = u"/_rels/.rels";

/// A package with one part, in memory, in a lenient one.
class Leniently {
public:
    explicit Leniently(const Bytes& relationships, const std::u16string& name = ROOT_PART) {
        fill(store, {u"/a.xml"});
        store.setPart(name, relationships);
    }
    explicit Leniently(const std::string& relationships) : Leniently(toBytes(relationships)) {}

    void open(OpenMode mode = OpenMode::ReadWrite) { package.open(mode); }
    std::string document() const { return toText(store.partBytes(ROOT_PART)); }

    /// The relationships of the package, each as "ID type target".
    std::string relationships() const {
        std::u16string list;
        for (const auto& each : package.getRelationships())
            list += each.getID() + u" " + each.getType() + u" " + each.getTarget() +
                    (each.getTargetMode() == opc::model::TargetMode::External ? u" ext;" : u";");
        return opc::toUDEString(list);
    }

    /// Each as "rule place:line what;".
    std::string oddities() {
        std::string list;
        for (const auto& odd : lenient.getOddities())
            list += odd.rule + " " + opc::toUDEString(odd.place) + ":" + std::to_string(odd.line) + " " +
                    odd.what + ";";
        return list;
    }

    MemoryPackage store;
    LenientPackage lenient{store};
    Package package{lenient};
};

/// What is odd in one relationship of the package.
std::string oddity(const std::string& rule, const std::string& idAndLine, const std::string& what) {
    return rule + " /_rels/.rels" + idAndLine + " " + what + ";";
}

/// Checks that a document is read so, and that every change keeps everything else in it.
/// @param changed  the document with one more relationship
void check(const Bytes& document, const Bytes& changed, const std::string& relationships,
           const std::string& oddities) {
    Leniently opened(document);
    opened.open();
    EXPECT_EQ(opened.relationships(), relationships);
    EXPECT_EQ(opened.oddities(), oddities);
    opened.package.createExternalRelationship(u"urn:t", u"http://b/?c&d", u"new");
    opened.package.close(false);
    EXPECT_EQ(opened.document(), toText(changed));

    opened.open();
    EXPECT_EQ(opened.relationships(), relationships + "new urn:t http://b/?c&d ext;");
    EXPECT_EQ(opened.oddities(), oddities);
    for (const auto& each : opened.package.getRelationships())
        if (each.getID() != u"new")
            opened.package.deleteRelationship(each.getID());
    opened.package.close(false);
    opened.open();
    EXPECT_EQ(opened.relationships(), "new urn:t http://b/?c&d ext;");
    opened.package.deleteRelationship(u"new");
    opened.package.close(false);
    opened.open(OpenMode::ReadOnly);
    EXPECT_EQ(opened.relationships(), "");
    const bool keepsMore = opened.package.hasUnreadRelationships();
    opened.package.close(false);
    EXPECT_EQ(opened.store.hasPart(ROOT_PART), keepsMore);
}

TEST(LenientRelationships, areReadOneByOneWhateverTheirForm) {
    const auto checkAll = [](const std::string& document, const std::string& relationships,
                             const std::string& oddities) {
        const std::string added =
            "Relationship Id=\"new\" Type=\"urn:t\" Target=\"http://b/?c&amp;d\" TargetMode=\"External\"/>";
        const bool isPrefixed = document.find("<p:Relationships") != std::string::npos;
        const auto given = inAllEncodings(replaced(document, "$", ""));
        const auto changed = inAllEncodings(replaced(document, "$", (isPrefixed ? "<p:" : "<") + added));
        for (std::size_t i = 0; i < given.size(); ++i)
            check(given[i], changed[i], relationships, oddities);
    };
    forEachCase("lenient/relationships.txt", checkAll);
}

TEST(LenientRelationships, thatAreNoDocumentAreKept) {
    forEachCase("lenient/no-relationships.txt", [](const std::string& document, const std::string& reason) {
        Leniently opened(document);
        opened.open();
        EXPECT_EQ(opened.relationships(), "");
        EXPECT_EQ(opened.oddities().substr(0, 36), "M1.20 /_rels/.rels:0 can't be read: ");
        const std::string refused =
            outcomeOf([&] { opened.package.createExternalRelationship(u"urn:t", u"u:v"); });
        const std::string expected = "opc::model::InvalidRelationshipContent: In /_rels/.rels: a change "
                                     "would lose what is in the document, which can't be read: " +
                                     reason;
        EXPECT_EQ(refused.substr(0, expected.size()), expected);
        opened.package.getPart(PartName(u"/a.xml")).createExternalRelationship(u"urn:t", u"u:v");
        opened.package.close(false);
        EXPECT_EQ(opened.document(), document);
    });
}

TEST(LenientRelationships, withADocumentTypeAreRefused) {
    const std::string document = "<?xml version='1.0'?><!-- \xE2\xB4\xAD> --><!DOCTYPE Relationships>" +
                                 RELATIONSHIPS_START + END; // U+2D2D
    for (const Bytes& bytes : inAllEncodings(document)) {
        Leniently opened(bytes);
        EXPECT_THROW(opened.open(), InvalidRelationshipContent);
        Leniently hidden(bytes, u"/_rels/none.xml.rels");
        EXPECT_RAISES(opc::model::PackageOpenFailed,
                      "In /_rels/none.xml.rels: a relationships part has a document type", hidden.open());
    }
}

TEST(LenientRelationships, giveNoIDAwayThatIsKept) {
    Leniently opened(RELATIONSHIPS_START + "<Relationship Id='rId1' Type='urn:t' Target=''/><o Id='rId2'/>" +
                     END);
    opened.open();
    EXPECT_RAISES(opc::model::RelationshipAlreadyExists, "Relationship ID already exists",
                  opened.package.createExternalRelationship(u"urn:t", u"u:v", u"rId2"));
    EXPECT_EQ(opened.package.createExternalRelationship(u"urn:t", u"u:v").getID(), u"rId3");
    const auto ignored = opened.package.getIgnoredItems();
    ASSERT_EQ(ignored.size(), 2U);
    EXPECT_EQ(ignored[0].name, u"/_rels/.rels#rId1");
    EXPECT_EQ(ignored[0].reason, "Target is empty");
    opened.package.close(true);
    EXPECT_EQ(opened.oddities(), "") << "the parts have gone";
}

TEST(LenientRelationships, goWithTheirSource) {
    Leniently opened(toBytes(RELATIONSHIPS_START + GOOD + "<o/>" + END), u"/_rels/a.xml.rels");
    opened.open();
    opened.package.deletePart(PartName(u"/a.xml"));
    opened.package.close(false);
    EXPECT_EQ(opened.store.partNames().size(), 0U);
}

TEST(LenientRelationships, ofOneIDCountOnce) {
    const std::string second = "<Relationship Id=' a' Type='urn:u' Target='b.xml'/>";
    Leniently opened(RELATIONSHIPS_START + GOOD + second + END);
    opened.open();
    EXPECT_EQ(opened.relationships(), "a urn:t a.xml;");
    EXPECT_EQ(opened.oddities(), oddity("M1.26", "#a:1", "Id stands there twice"));
    opened.package.deleteRelationship(u"a");
    EXPECT_THROW(opened.package.createExternalRelationship(u"urn:t", u"u:v", u"a"),
                 opc::model::RelationshipAlreadyExists);
    opened.package.close(false);
    EXPECT_EQ(opened.document(), RELATIONSHIPS_START + second + END);
}

TEST(LenientRelationships, areRetargetedWhereTheyStand) {
    const std::string mode = "<Relationship Target='b' TargetMode='External' Id='b' Type='urn:t' />";
    Leniently opened(RELATIONSHIPS_START + GOOD + "<!-- c -->" + mode +
                     "<Relationship Id='c' Type='urn:t' Target='c'/>" + END);
    opened.open();
    opened.package.setExternalTarget(u"a", u"http://x/?y&z");
    opened.package.setInternalTarget(u"b", opc::model::URI(u"/a.xml"));
    opened.package.deleteRelationship(u"c");
    opened.package.createExternalRelationship(u"urn:t", u"d", u"c"); // as good as a new target
    opened.package.close(false);
    EXPECT_EQ(opened.document(),
              RELATIONSHIPS_START +
                  "<Relationship Id='a' Type='urn:t' Target='http://x/?y&amp;z' TargetMode=\"External\"/>"
                  "<!-- c --><Relationship Target='a.xml' TargetMode='Internal' Id='b' Type='urn:t' />"
                  "<Relationship Id='c' Type='urn:t' Target='d' TargetMode=\"External\"/>" +
                  END);
    Leniently one(RELATIONSHIPS_START + "\n" + GOOD + END);
    one.open();
    one.package.setInternalTarget(u"a", opc::model::URI(u"b.xml#c"));
    one.package.close(false);
    EXPECT_EQ(one.document(),
              RELATIONSHIPS_START + "\n<Relationship Id='a' Type='urn:t' Target='b.xml#c'/>" + END)
        << "also if it is the only one";
}

/// Other programs, too, use the first one: a new one must come before those that were left out.
TEST(LenientRelationships, toCorePropertiesCountIfTheyAreFirst) {
    const auto core = [](const std::string& id) {
        return "<Relationship Id='" + id + "' Type='" + CORE + "' Target='" + id + ".xml'/>";
    };
    Leniently opened(RELATIONSHIPS_START + core("b") + core("a") + core("c") + END);
    opened.open();
    EXPECT_EQ(opened.relationships(), "b " + CORE + " b.xml;");
    EXPECT_EQ(opened.oddities(), oddity("M4.1", "#a:1", "is one more relationship to core properties") +
                                     oddity("M4.1", "#c:1", "is one more relationship to core properties"));
    opened.package.deleteRelationship(u"b");
    opened.package.createInternalRelationship(opc::toString(CORE, true), opc::model::URI(u"a.xml"), u"d");
    opened.package.close(false);
    opened.open(OpenMode::ReadOnly);
    EXPECT_EQ(opened.relationships(), "d " + CORE + " a.xml;");
    Leniently ofPart(toBytes(RELATIONSHIPS_START + core("b") + core("a") + END), u"/_rels/a.xml.rels");
    ofPart.open();
    EXPECT_EQ(ofPart.oddities(), "");
}

TEST(LenientRelationships, beyondBoundsAreTheModelsOwn) {
    const std::string comment = "<!--" + repeated("=", 300001) + "-->";
    Leniently odd(RELATIONSHIPS_START + comment + "<Relationship Id='x' Type='urn:t' Target=''/>" + END);
    EXPECT_THROW(odd.open(), InvalidRelationshipContent);
    Leniently sound(RELATIONSHIPS_START + comment + GOOD + END);
    sound.open();
    sound.package.createExternalRelationship(u"urn:t", u"u:v", u"b");
    sound.package.close(false);
    EXPECT_EQ(sound.document().find(comment), std::string::npos) << "it is written anew";
    sound.open();
    EXPECT_EQ(sound.relationships(), "a urn:t a.xml;b urn:t u:v ext;");
}

/// A change that changes nothing, and a change that fails halfway and is repeated.
TEST(LenientRelationships, areWrittenOnceAndWhole) {
    const std::string document = RELATIONSHIPS_START + "<!-- kept -->" + GOOD +
                                 "<Relationship Id='c' Type='urn:t' Target='c.xml'/>" + END;
    MemoryPackage store;
    fill(store, {u"/a.xml"});
    store.setPart(ROOT_PART, toBytes(document));
    ScriptedPackage scripted(store);
    LenientPackage lenient(scripted);
    Package package(lenient);
    package.open(OpenMode::ReadWrite);
    package.deleteRelationship(u"a");
    package.createInternalRelationship(u"urn:t", opc::model::URI(u"a.xml"), u"a");
    package.close(false);
    EXPECT_EQ(scripted.countCalls("getOutputStream /_rels/.rels"), 0U);
    package.open(OpenMode::ReadWrite);
    package.createExternalRelationship(u"urn:t", u"u:v", u"b");
    scripted.failAt("closeStream /_rels/.rels", "full");
    EXPECT_THROW(package.close(false), opc::Exception);
    scripted.forgetScript();
    package.close(false);
    EXPECT_EQ(
        toText(store.partBytes(ROOT_PART)),
        replaced(document, END,
                 "<Relationship Id=\"b\" Type=\"urn:t\" Target=\"u:v\" TargetMode=\"External\"/>" + END));
}

} // namespace
