#include "PhysicalSupport.hpp"
#include "support/Encodings.hpp"
#include "support/PackageContent.hpp"
#include "support/ScriptedPackage.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>

namespace {

using namespace opc::test;
using opc::interfaces::IPhysicalPackage;
using opc::model::InvalidRelationshipContent;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;
using opc::physical::MemoryPackage;

const std::string URI = "'http://schemas.openxmlformats.org/package/2006/relationships'";
const std::string CORE =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const std::string ROOT = "<Relationships xmlns=" + URI + ">";
const std::string END = "</Relationships>";
const std::string GOOD = "<Relationship Id='a' Type='urn:t' Target='a.xml'/>";
constexpr char16_t ROOT_PART[] = u"/_rels/.rels";

/// A package of one part, in memory, behind a lenient one.
class Leniently {
public:
    explicit Leniently(const Bytes& relationships, const std::u16string& name = ROOT_PART) {
        fill(store, {u"/a.xml"});
        store.setPart(name, relationships);
    }
    explicit Leniently(const std::string& relationships) : Leniently(toBytes(relationships)) {}

    void open(OpenMode mode = OpenMode::ReadWrite) { package.open(mode); }
    std::string document() const { return toText(store.partBytes(ROOT_PART)); }

    /// Of the package, each as "ID type target".
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

struct Case {
    std::string document;      ///< with a $ where a new relationship comes to stand
    std::string relationships; ///< as `Leniently` gives them
    std::string oddities;
};

/// What is odd with one relationship of the package.
std::string oddity(const std::string& rule, const std::string& idAndLine, const std::string& what) {
    return rule + " /_rels/.rels" + idAndLine + " " + what + ";";
}

/// That a document is read so, and that whatever is changed, all else in it stays.
/// @param changed  the document with one relationship more
void check(const Case& expected, const Bytes& document, const Bytes& changed) {
    Leniently opened(document);
    opened.open();
    EXPECT_EQ(opened.relationships(), expected.relationships);
    EXPECT_EQ(opened.oddities(), expected.oddities);
    opened.package.createExternalRelationship(u"urn:t", u"http://b/?c&d", u"new");
    opened.package.close(false);
    EXPECT_EQ(opened.document(), toText(changed));

    opened.open();
    EXPECT_EQ(opened.relationships(), expected.relationships + "new urn:t http://b/?c&d ext;");
    EXPECT_EQ(opened.oddities(), expected.oddities);
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

/// The same in one encoding, or in as many as there are.
void check(const Case& expected, std::size_t encodings = 1) {
    const std::string added =
        "Relationship Id=\"new\" Type=\"urn:t\" Target=\"http://b/?c&amp;d\" TargetMode=\"External\"/>";
    const bool isPrefixed = expected.document.find("<p:Relationships") != std::string::npos;
    const std::string after = replaced(expected.document, "$", (isPrefixed ? "<p:" : "<") + added);
    SCOPED_TRACE(after);
    const auto given = inAllEncodings(replaced(expected.document, "$", ""));
    const auto changed = inAllEncodings(after);
    for (std::size_t i = 0; i < std::min(given.size(), encodings); ++i)
        check(expected, given[i], changed[i]);
}

TEST(LenientRelationships, areReadWholeWhateverTheirForm) {
    const std::string prefixed = "<p:Relationships xmlns:p=" + URI + ">";
    const std::string one = "<p:Relationship Id='a' Type='urn:t' Target='a.xml'/>";
    const std::string two = "<q:Relationship xmlns:q=" + URI +
                            " Id=' b' Type='urn:t&#10;' Target='b&amp;c' TargetMode='External'/>";
    const std::string three =
        "<Relationship xmlns=" + URI + " Id='c' Type='urn:t' Target='c.xml'> </Relationship>";
    const std::string all = "a urn:t a.xml;b urn:t b&c ext;c urn:t c.xml;";
    const std::string old = "http://schemas.microsoft.com/package/2005/06/relationships";
    const Case cases[] = {
        {prefixed + one + two + three + "$</p:Relationships>", all, ""},
        {"<?xml version='1.0'?>\n<Relationships xmlns=" + URI + " xmlns:p=" + URI + ">" + one + two +
             "<Relationship Id='c' Type='urn:t' Target='c.xml'/>$" + END,
         all, ""},
        {replaced(prefixed, ">", " xmlns='urn:other'><!-- c -->") + one + "<?i?>" + two + three +
             "<!-- d -->$</p:Relationships>\n",
         all, ""},
        {prefixed + "$</p:Relationships>", "", ""},
        {"<Relationships xmlns='" + old + "'><Relationship Id='a' Type='" + old +
             "/metadata/core-properties' Target='a.xml'/>$" + END,
         "a " + CORE + " a.xml;", oddity("M1.20", ":1", "has the namespace of 2005/06")},
        {"<Relationships xmlns=" + URI +
             " xmlns:x='http://www.w3.org/2001/XMLSchema-instance' "
             "x:schemaLocation='a b'>" +
             GOOD + "$" + END,
         "a urn:t a.xml;", ""},
        {"<?xml version='1.1'?>" + prefixed + "\xC2\x85\xE2\x80\xA8$</p:Relationships>", "", ""},
    };
    for (const Case& each : cases)
        check(each, 5);
}

TEST(LenientRelationships, areLeftOutOneByOne) {
    const auto relationship = [](const std::string& attributes) {
        return "\n<Relationship " + attributes + "/>";
    };
    const std::string nested =
        "<Relationship Id='x' Type='urn:t' Target='b.xml'><Relationship Id='y' Type='urn:t' "
        "Target='c.xml'/></Relationship>";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {relationship("Id='x' Type='urn:t' Target=''"), "M1.28", "#x:2 Target is empty"},
        {relationship("Id='x' Type='urn:t'"), "M1.28", "#x:2 Target is missing"},
        {relationship("Id='x' Type='urn:t' Target='mailto:#@_#' TargetMode='External'"), "M1.28",
         "#x:2 Target is not a valid xsd:anyURI"},
        {relationship("Id='x' Type='urn:t' Target='\xC3\xA4.xml'"), "M1.28",
         "#x:2 Target is not a valid URI for an internal relationship"},
        {relationship("Id='x' Type='urn:t' Target='mailto:b'"), "M1.29",
         "#x:2 Target of an internal relationship cannot be an opaque URI"},
        {relationship("Id='x' Type='' Target='b'"), "M1.27", "#x:2 Type is empty"},
        {relationship("Id='x' Target='b'"), "M1.27", "#x:2 Type is missing"},
        {relationship("Id='1 x' Type='urn:t' Target='b'"), "M1.26", "#1 x:2 Id is not a valid xsd:ID"},
        {relationship("Type='urn:t' Target='b'"), "M1.26", ":2 Id is missing"},
        {relationship("Id='x' Type='urn:t' Target='b' TargetMode='internal'"), "M1.20",
         "#x:2 TargetMode is neither External nor Internal"},
        {relationship("Id='x' Type='urn:t' Target='b' New='c'"), "M1.20",
         "#x:2 has an attribute that isn't declared: New"},
        {relationship("Id='x' Type='urn:t' Target='b' xml:base='c'"), "M1.20",
         "#x:2 has an attribute that isn't declared: base"},
        {relationship("Id='x' xmlns:x='u' x:Id='y' Type='urn:t' Target='b'"), "M1.20",
         "#x:2 has an attribute that isn't declared: Id"},
        {"\n" + nested, "M1.20", "#x:2 has elements in it"},
        {"\r<Other Id='x'/>", "M1.20", ":2 has an element that is no relationship: Other"},
        {"\r\n<o:Relationship xmlns:o='urn:o' Id='x' Type='urn:t' Target='b'/>", "M1.20",
         ":2 has an element that is no relationship: Relationship"},
        {" text", "M1.20", ":1 has text between its relationships"},
    };
    const std::string last = "<Relationship Id='b' Type='urn:t' Target='b.xml'/>";
    for (const auto& [bad, rule, what] : cases) {
        const std::size_t blank = what.find(' ', what.find(':'));
        check({ROOT + GOOD + bad + last + "$" + END, "a urn:t a.xml;b urn:t b.xml;",
               oddity(rule, what.substr(0, blank), what.substr(blank + 1))});
    }
    check({replaced(ROOT, ">", " xml:space='preserve'>") + GOOD + "$" + END, "a urn:t a.xml;",
           oddity("M1.20", ":1", "has an attribute that isn't declared: space")});
}

TEST(LenientRelationships, followMarkupCompatibility) {
    const std::string begin =
        "<Relationships xmlns=" + URI +
        " xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006' xmlns:r=" + URI +
        " xmlns:n='urn:n' mc:Ignorable='n'>";
    const auto relationship = [](const std::string& id, const std::string& more = {}) {
        return "<Relationship Id='" + id + "' Type='urn:t' Target='a.xml'" + more + "/>";
    };
    const auto alternatives = [&](const std::string& required) {
        return "<mc:AlternateContent><mc:Choice Requires='" + required + "'>" + relationship("b") +
               "</mc:Choice><mc:Choice Requires='r'>" + relationship("c") + "</mc:Choice><mc:Fallback>" +
               relationship("d") + "</mc:Fallback></mc:AlternateContent>";
    };
    const std::string ignored =
        oddity("O1.7", ":1", "has content that programs may ignore (markup compatibility)");
    const std::pair<std::string, std::string> cases[] = {
        {relationship("a", " n:x='y'"), "a"},
        {"<n:x Id='x'><Relationship Id='y'/></n:x>" + relationship("a"), "a"},
        {"<n:x mc:ProcessContent='n:x'>" + relationship("a") + "</n:x><n:y>" + relationship("b") + "</n:y>",
         "a"},
        {"<n:x mc:ProcessContent='n:*'>" + relationship("a") + "</n:x><n:y/>", "a"},
        {alternatives("n"), "c"},
        {alternatives("r"), "b"},
        {"<mc:AlternateContent><mc:Choice Requires='n r'/><mc:Fallback>" + relationship("d") +
             "</mc:Fallback></mc:AlternateContent>",
         "d"},
        {"<mc:AlternateContent><mc:Fallback>" + relationship("a") + "</mc:Fallback></mc:AlternateContent>",
         "a"},
        {"<n:x mc:ProcessContent='n:*'>" + relationship("a") + "</n:x>", "a"},
        {"<n:x mc:MustUnderstand='n'/>" + relationship("a"), "a"},
    };
    for (const auto& [content, id] : cases)
        check({begin + content + "$" + END, id + " urn:t a.xml;", ignored});
    check({begin + relationship("a") + "$" + END, "a urn:t a.xml;", ""});
}

TEST(LenientRelationships, thatAreNoDocumentAreKept) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "invalid document structure"},
        {"text", "invalid document structure"},
        {ROOT + GOOD, "input ended before all started tags were ended; last tag started is 'Relationships'"},
        {"<other/>", "The root isn't a Relationships element."},
        {"<Relationships/>", "The root isn't a Relationships element."},
        {"<?xml version='1.0' encoding='ISO-8859-1'?>" + ROOT + END, ""},
        {replaced(ROOT, ">",
                  " xmlns:n='urn:n' xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006' "
                  "mc:MustUnderstand='n'>") +
             END,
         "The document has content that a program must understand to read it: n"},
    };
    for (const auto& [document, reason] : cases) {
        SCOPED_TRACE(document);
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
    }
}

TEST(LenientRelationships, withADocumentTypeAreRefused) {
    const std::string document =
        "<?xml version='1.0'?><!-- \xE2\xB4\xAD> --><!DOCTYPE Relationships>" + ROOT + END; // U+2D2D
    for (const Bytes& bytes : inAllEncodings(document)) {
        Leniently opened(bytes);
        EXPECT_THROW(opened.open(), InvalidRelationshipContent);
        Leniently hidden(bytes, u"/_rels/none.xml.rels");
        EXPECT_RAISES(opc::model::PackageOpenFailed,
                      "In /_rels/none.xml.rels: a relationships part has a document type", hidden.open());
    }
}

TEST(LenientRelationships, giveNoIDAwayThatIsKept) {
    Leniently opened(ROOT + "<Relationship Id='rId1' Type='urn:t' Target=''/><o Id='rId2'/>" + END);
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
    Leniently opened(toBytes(ROOT + GOOD + "<o/>" + END), u"/_rels/a.xml.rels");
    opened.open();
    opened.package.deletePart(PartName(u"/a.xml"));
    opened.package.close(false);
    EXPECT_EQ(opened.store.partNames().size(), 0U);
}

TEST(LenientRelationships, ofOneIDCountOnce) {
    const std::string second = "<Relationship Id=' a' Type='urn:u' Target='b.xml'/>";
    Leniently opened(ROOT + GOOD + second + END);
    opened.open();
    EXPECT_EQ(opened.relationships(), "a urn:t a.xml;");
    EXPECT_EQ(opened.oddities(), oddity("M1.26", "#a:1", "Id stands there twice"));
    opened.package.deleteRelationship(u"a");
    EXPECT_THROW(opened.package.createExternalRelationship(u"urn:t", u"u:v", u"a"),
                 opc::model::RelationshipAlreadyExists);
    opened.package.close(false);
    EXPECT_EQ(opened.document(), ROOT + second + END);
}

/// Other programs take the first one as well: one that is made anew must stand in front of those left out.
TEST(LenientRelationships, toCorePropertiesCountIfTheyAreFirst) {
    const auto core = [](const std::string& id) {
        return "<Relationship Id='" + id + "' Type='" + CORE + "' Target='" + id + ".xml'/>";
    };
    Leniently opened(ROOT + core("b") + core("a") + core("c") + END);
    opened.open();
    EXPECT_EQ(opened.relationships(), "b " + CORE + " b.xml;");
    EXPECT_EQ(opened.oddities(), oddity("M4.1", "#a:1", "is one more relationship to core properties") +
                                     oddity("M4.1", "#c:1", "is one more relationship to core properties"));
    opened.package.deleteRelationship(u"b");
    opened.package.createInternalRelationship(opc::toString(CORE, true), opc::model::URI(u"a.xml"), u"d");
    opened.package.close(false);
    opened.open(OpenMode::ReadOnly);
    EXPECT_EQ(opened.relationships(), "d " + CORE + " a.xml;");
    Leniently ofPart(toBytes(ROOT + core("b") + core("a") + END), u"/_rels/a.xml.rels");
    ofPart.open();
    EXPECT_EQ(ofPart.oddities(), "");
}

TEST(LenientRelationships, beyondBoundsAreTheModelsOwn) {
    const std::string comment = "<!--" + repeated("=", 300001) + "-->";
    Leniently odd(ROOT + comment + "<Relationship Id='x' Type='urn:t' Target=''/>" + END);
    EXPECT_THROW(odd.open(), InvalidRelationshipContent);
    Leniently sound(ROOT + comment + GOOD + END);
    sound.open();
    sound.package.createExternalRelationship(u"urn:t", u"u:v", u"b");
    sound.package.close(false);
    EXPECT_EQ(sound.document().find(comment), std::string::npos) << "it is written anew";
    sound.open();
    EXPECT_EQ(sound.relationships(), "a urn:t a.xml;b urn:t u:v ext;");
}

/// A change that comes to nothing, and one that fails halfway and is made again.
TEST(LenientRelationships, areWrittenOnceAndWhole) {
    const std::string document =
        ROOT + "<!-- kept -->" + GOOD + "<Relationship Id='c' Type='urn:t' Target='c.xml'/>" + END;
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
