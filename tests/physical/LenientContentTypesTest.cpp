#include "PhysicalSupport.hpp"
#include "support/PackageTest.hpp"

#include <opc/physical/LenientPackage.hpp>

/// @file
/// Content types streams with entries that break the standard, and how they change.

namespace {

using namespace opc::test;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;

const std::string NAMESPACE = "http://schemas.openxmlformats.org/package/2006/content-types";
const std::string BETA = "http://schemas.microsoft.com/package/2005/06/content-types";
const std::string ROOT = "<Types xmlns='" + NAMESPACE + "'>";
const std::string XML = "<Default Extension='xml' ContentType='t/xml'/>";
const std::string RELS = "application/vnd.openxmlformats-package.relationships+xml";

/// A store with the parts /a.xml and /b.png, seen by the model through a lenient package.
class LenientContentTypes {
public:
    explicit LenientContentTypes(const Bytes& types, const std::vector<std::u16string>& more = {})
        : scripted(store), lenient(scripted), package(lenient) {
        std::vector<std::u16string> names = {u"/a.xml", u"/b.png"};
        names.insert(names.end(), more.begin(), more.end());
        fill(store, names);
        store.setContentTypes(types);
    }
    explicit LenientContentTypes(const std::string& types, const std::vector<std::u16string>& more = {})
        : LenientContentTypes(toBytes(types), more) {}

    void create(const std::string& name, const std::string& type = "t/xml") {
        package.createPart(PartName(opc::toString(name, true)),
                           opc::model::ContentType(opc::toString(type, true)),
                           opc::model::StandardPartInfo());
    }
    void remove(const std::string& name) { package.deletePart(PartName(opc::toString(name, true))); }
    void relate(const std::string& name) {
        package.getPart(PartName(opc::toString(name, true))).createExternalRelationship(u"t:t", u"x");
    }

    /// Has everything written, and the package stays open since it can't be closed.
    void writeAndGoOn() {
        scripted.failAt("close", "busy");
        EXPECT_THROW(package.close(false), opc::model::PackageCloseFailed);
        scripted.forgetScript();
    }

    /// What the model sees: each part with its content type; and behind it the rules that are broken, with their lines.
    std::string look() const {
        std::string found;
        for (const opc::model::Part& part : package.getParts())
            found +=
                opc::toUDEString(part.getName().toString() + u"=" + part.getContentType().toString()) + " ";
        return found;
    }
    /// Those of the stream itself: what is hidden has no line.
    std::string oddities() {
        std::string found;
        for (const auto& oddity : lenient.getOddities())
            if (oddity.line > 0)
                found += oddity.rule + ":" + std::to_string(oddity.line) + " ";
        return found;
    }
    std::string types() const { return toText(store.contentTypes()); }

    opc::physical::MemoryPackage store;
    ScriptedPackage scripted;
    LenientPackage lenient;
    Package package;
};

TEST(LenientContentTypes, areReadEachEntryByItself) {
    const std::string a = "/a.xml=t/xml ";
    const std::string both = "/a.xml=t/xml /b.png=t/png ";
    const std::string png = "<Default Extension='png' ContentType='t/png'/>";
    const auto inUTF16 = [](const std::string& text) {
        Bytes wide;
        for (const char16_t unit : u"\uFEFF" + opc::toString(text, true))
            wide.insert(wide.end(),
                        {static_cast<unsigned char>(unit & 0xFF), static_cast<unsigned char>(unit >> 8)});
        return wide;
    };
    const auto root = [](const std::string& entries) {
        return toBytes(ROOT + XML + "\n" + entries + "</Types>");
    };
    struct Case {
        Bytes document;
        std::string seen;
        std::string oddities;
    };
    const Case cases[] = {
        {root(png), both, ""},
        {root("<p:Default xmlns:p='" + NAMESPACE + "' Extension='png' ContentType='t/png'></p:Default>"),
         both, ""},
        {toBytes("<p:Types xmlns:p='" + NAMESPACE + "'><p:Default Extension='PNG' ContentType='t/png'/>" +
                 "<p:Override PartName=' /A.xml&#10;' ContentType='t/xml; c=&quot; &lt;&quot;'/></p:Types>"),
         "/a.xml=t/xml;c=\" <\" /b.png=t/png ", ""},
        {toBytes("<Types xmlns='" + BETA + "'>" + XML + png + "</Types>"), both, "M1.20:1 "},
        {inUTF16(ROOT + XML + "<Override PartName='b.png' ContentType='t/png'/></Types>"), both, "M1.4:1 "},
        {root(png + "<Override PartName='b.png' ContentType='t/other'/>"), "/a.xml=t/xml /b.png=t/other ",
         "M1.4:2 "},
        {root("<Override PartName='b.png' ContentType='t/other'/>\r\n<Override PartName='/B.png' "
              "ContentType='t/png'/>"),
         both, "M1.4:2 M2.5:2 "},
        {root(png + png + "<Default Extension='Png' ContentType='T/png'/>"), both, ""},
        {root(png + "\r<Default Extension='png' ContentType='t/p'/>"), both, "M2.5:3 "},
        {root(png + "<Override PartName='/b.png' ContentType='http://h/x'/>"), both, "M1.13:2 "},
        {root(png + "<Override PartName='/b.png'/><Override ContentType='a/b'/><Default Extension='x'/>"),
         both, "M2.7:2 M2.7:2 M2.6:2 "},
        {root("<Default Extension='png' ContentType=''/>"), a, "M1.13:2 "},
        {root("<Default Extension='.png' ContentType='t/png'/><Default Extension='' ContentType='t/png'/>"),
         a, "M2.6:2 M2.6:2 "},
        {root(
             png +
             "<Override PartName='/c/../b.png' ContentType='t/o'/><Override PartName='' ContentType='t/o'/>"),
         both, "M2.7:2 M2.7:2 "},
        {root(
             "<Default Extension='png' ContentType='t/png' Other='1' xml:space='default'>text<x/></Default>"),
         both, "M1.20:2 M1.20:2 "},
        {root("text<o:Default xmlns:o='urn:o' Extension='png' ContentType='t/o'><Default Extension='png' "
              "ContentType='t/o'/></o:Default>" +
              png),
         both, "M1.20:1 M1.20:2 "},
        {toBytes(
             "<Types xmlns='" + NAMESPACE +
             "' xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006' " +
             "xmlns:i='http://www.w3.org/2001/XMLSchema-instance' m:Ignorable='m' i:schemaLocation='a b'>" +
             XML + png + "</Types>"),
         both, "M2.10:1 "},
    };
    for (const Case& each : cases) {
        LenientContentTypes types(each.document);
        const std::string label = toText(each.document);
        types.package.open(OpenMode::ReadWrite);
        EXPECT_EQ(types.look(), each.seen) << label;
        EXPECT_EQ(types.oddities(), each.oddities) << label;
        const bool isReadAlike =
            each.oddities.empty() || each.oddities.find("M2.5") == 0 || label.find(BETA) != std::string::npos;
        EXPECT_EQ(types.package.getIgnoredItems().empty(), isReadAlike) << label;
        types.package.close(false);
        EXPECT_EQ(types.scripted.countCalls("getContentTypeOutputStream"), 0U) << label;
    }
}

TEST(LenientContentTypes, nameTheEntryThatCouldHaveCoveredAHiddenPart) {
    LenientContentTypes types(ROOT + XML + "\n<Override PartName='/b.png' ContentType='x'/>" +
                                  "<Default Extension='jpg' ContentType='t/jpg;'/></Types>",
                              {u"/c.jpg", u"/d.gif"});
    types.package.open(OpenMode::ReadOnly);
    std::string hidden;
    for (const auto& item : types.lenient.hiddenItems())
        hidden += opc::toUDEString(item.name) + ": " + item.reason + "\n";
    EXPECT_EQ(
        hidden,
        "/b.png: no content type covers it: the Override for it in line 2 was left out, ContentType is not "
        "a valid content type\n"
        "/c.jpg: no content type covers it: the Default for it in line 2 was left out, ContentType is not "
        "a valid content type\n"
        "/d.gif: no content type covers it\n");
    const auto oddities = types.lenient.getOddities();
    ASSERT_EQ(oddities.size(), 5U);
    EXPECT_EQ(oddities[3].what, "the Override for \"/b.png\": ContentType is not a valid content type");
}

TEST(LenientContentTypes, changeInTheirOwnText) {
    const std::string end = "</Types>";
    const std::string lines =
        "<!-- c -->" + ROOT + "\r\n\t" + XML + "\r\n\t<Default  Extension='png' ContentType='t/png'/>\r\n";
    const std::string leftOut = "<Override PartName='/b.png' ContentType='x'/>";
    const std::string png = "<Default Extension='png' ContentType='t/png'/>";
    const auto newOverride = [](const std::string& name, const std::string& type) {
        return "<Override PartName=\"" + name + "\" ContentType=\"" + type + "\"/>";
    };
    const auto newDefault = [](const std::string& extension, const std::string& type) {
        return "<Default Extension=\"" + extension + "\" ContentType=\"" + type + "\"/>";
    };
    struct Case {
        std::string before;
        std::function<void(LenientContentTypes&)> change;
        std::string after;
        std::vector<std::u16string> more;
    };
    const Case cases[] = {
        // What is added stands as its neighbours do; a Default that isn't used any more stays.
        {lines + end,
         [](auto& t) {
             t.remove("/a.xml");
             t.create("/c.png", "t/other");
             t.create("/d.bin", "a/b");
         },
         lines.substr(0, lines.size() - 2) + newDefault("bin", "a/b") + newOverride("/c.png", "t/other") +
             "\r\n" + end,
         {}},
        {"<p:Types xmlns:p='" + BETA + "'><p:Default ContentType='t/xml' Extension='xml'/></p:Types>",
         [](auto& t) { t.create("/c.jpg", "t/jpg"); },
         "<p:Types xmlns:p='" + BETA +
             "'><p:Default ContentType='t/xml' Extension='xml'/><p:Default Extension=\"jpg\" " +
             "ContentType=\"t/jpg\"/></p:Types>",
         {}},
        // A Default is changed where it stands when its extension gets another content type.
        {lines + png + "<Default Extension='png' ContentType='t/p'/>" + end,
         [](auto& t) {
             t.remove("/b.png");
             t.create("/c.png", "t/other");
         },
         std::string(lines).replace(lines.find("t/png"), 5, "t/other") + end,
         {}},
        // So is an Override; and all goes that says otherwise, or with the part.
        {lines + "<Override PartName='b.png' ContentType='t/1'/>" + leftOut + end,
         [](auto& t) {
             t.remove("/b.png");
             t.create("/B.png", "t/2");
         },
         lines + "<Override PartName='/B.png' ContentType='t/2'/>" + end,
         {}},
        {lines +
             "<Override PartName='/b.png' ContentType='t/1'/>\n<Override PartName='B.png' "
             "ContentType='t/2'/>\n" +
             leftOut + end,
         [](auto& t) { t.remove("/b.png"); },
         lines + "\n\n" + end,
         {}},
        // The model has nothing to write where a Default covers a part, but what was left out would count for others.
        {lines + leftOut + end, [](auto& t) { t.remove("/b.png"); }, lines + end, {}},
        {lines + "<Override PartName='/c.png' ContentType='x'/>" + end,
         [](auto& t) { t.create("/c.png", "t/png"); },
         lines + end,
         {}},
        {lines + "<Override PartName='/c.png' ContentType='x'/>" + end,
         [](auto& t) { t.create("/c.jpg", "t/jpg"); },
         lines + "<Override PartName='/c.png' ContentType='x'/>" + newDefault("jpg", "t/jpg") + end,
         {}},
        // A new Default would cover what is hidden, or change the type of what others don't see as we do.
        {ROOT + XML + leftOut + end,
         [](auto& t) {
             t.create("/c.png", "t/png");
             t.create("/d.PNG", "t/png");
         },
         ROOT + XML + leftOut + newOverride("/c.png", "t/png") + newOverride("/d.PNG", "t/png") + end,
         {}},
        {ROOT + XML + "<Override PartName='b.png' ContentType='t/1'/>" + end,
         [](auto& t) { t.create("/c.png", "t/png"); },
         ROOT + XML + "<Override PartName='b.png' ContentType='t/1'/>" + newOverride("/c.png", "t/png") + end,
         {}},
        {ROOT + XML + "<Default Extension='jpg' ContentType=''/>" + end,
         [](auto& t) { t.create("/c.jpg", "t/jpg"); },
         ROOT + XML + newDefault("jpg", "t/jpg") + end,
         {}},
        // Relationships parts that no content type covers are given one once one of them is made.
        {ROOT + XML + end,
         [](auto& t) { t.relate("/a.xml"); },
         ROOT + XML + newDefault("rels", RELS) + end,
         {u"/_rels/.rels"}},
        {ROOT + XML + end,
         [](auto& t) { t.relate("/a.xml"); },
         ROOT + XML + newOverride("/_rels/.rels", RELS) + newOverride("/_rels/a.xml.rels", RELS) + end,
         {u"/_rels/.rels", u"/x.rels"}},
        // It is held against the document, whatever has been written in between.
        {ROOT + XML + leftOut + end,
         [](auto& t) {
             t.create("/c.png", "t/png");
             t.writeAndGoOn();
             t.create("/d.png", "t/png");
             t.writeAndGoOn();
             t.remove("/c.png");
         },
         ROOT + XML + leftOut + newOverride("/d.png", "t/png") + end,
         {}},
        {ROOT + XML + end,
         [](auto& t) {
             t.create("/c.jpg", "t/jpg");
             t.writeAndGoOn();
             t.remove("/c.jpg");
         },
         ROOT + XML + end,
         {}},
    };
    for (const Case& each : cases) {
        LenientContentTypes types(each.before, each.more);
        for (const std::u16string& name : each.more)
            if (name == u"/_rels/.rels")
                types.store.setPart(name, relationships(""));
        types.package.open(OpenMode::ReadWrite);
        each.change(types);
        const std::string seen = types.look();
        const std::size_t hidden = types.lenient.hiddenItems().size();
        types.package.close(false);
        EXPECT_EQ(types.types(), each.after) << each.before;
        types.package.open(OpenMode::ReadOnly);
        EXPECT_EQ(types.look(), seen) << each.before;
        EXPECT_EQ(types.lenient.hiddenItems().size(), hidden) << each.before;
    }
}

TEST(LenientContentTypes, areWrittenAgainAfterAFailure) {
    LenientContentTypes types(ROOT + XML + "</Types>");
    for (const char* const failing : {"getContentTypeOutputStream", "write types", "closeStream types"}) {
        types.package.open(OpenMode::ReadWrite);
        types.create(std::string("/") + failing[0] + ".jpg", std::string("t/") + failing[0]);
        types.scripted.failAt(failing, "full");
        EXPECT_RAISES(opc::Exception, "full", types.package.close(false)) << failing;
        types.scripted.forgetScript();
        types.package.close(false);
        EXPECT_NE(types.types().find(std::string("\"t/") + failing[0] + "\""), std::string::npos) << failing;
    }
}

TEST(LenientContentTypes, areLeftToTheModelWhereTheyCanNotBeRead) {
    const std::string prefixed = "<p:Types xmlns:p='" + NAMESPACE + "'>";
    for (const std::string& document :
         {"<!DOCTYPE p>" + prefixed + "</p:Types>", prefixed, std::string("<Types/>"),
          "<?xml version='1.0' encoding='ISO-8859-1'?>" + prefixed + "</p:Types>",
          ROOT + XML + "<Default Extension='png' ContentType='x'></Types>"}) {
        LenientContentTypes types(document);
        EXPECT_THROW(types.package.open(OpenMode::ReadOnly), opc::model::InvalidContentTypeStream)
            << document;
        EXPECT_TRUE(types.lenient.getOddities().empty());
    }
    // The model is given another document where relationships parts aren't covered.
    LenientContentTypes types("<?xml wrong='' version='1.0'?>" + ROOT + XML + "</Types>",
                              {u"/_rels/a.xml.rels"});
    EXPECT_THROW(types.package.open(OpenMode::ReadOnly), opc::model::InvalidContentTypeStream);
}

} // namespace
