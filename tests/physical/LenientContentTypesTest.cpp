#include "PhysicalSupport.hpp"
#include "support/Cases.hpp"
#include "support/Encodings.hpp"
#include "support/PackageTest.hpp"
#include "support/Texts.hpp"

#include <opc/physical/LenientPackage.hpp>

/// @file
/// Content types streams with entries that break the standard, and how they change.

namespace {

using namespace opc::test;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;

const std::string NAMESPACE = "http://schemas.openxmlformats.org/package/2006/content-types";
const std::string TYPES_START = "<Types xmlns='" + NAMESPACE + "'>";
const std::string XML = "<Default Extension='xml' ContentType='t/xml'/>";
const std::string RELS = "application/vnd.openxmlformats-package.relationships+xml";

/// A store with the parts /a.xml and /b.png, which the model sees through a lenient package.
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

    /// Writes everything. The package stays open, because it can't be closed.
    void writeAndGoOn() {
        scripted.failAt("close", "busy");
        EXPECT_THROW(package.close(false), opc::model::PackageCloseFailed);
        scripted.forgetScript();
    }

    /// What the model sees: each part with its content type, and then the broken rules with their lines.
    std::string look() const {
        std::string found;
        for (const opc::model::Part& part : package.getParts())
            found +=
                opc::toUDEString(part.getName().toString() + u"=" + part.getContentType().toString()) + " ";
        return found;
    }
    /// The rules that the stream itself breaks: hidden items have no line.
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

TEST(LenientContentTypes, areReadOnceAsRelationshipsAreIfNothingIsOdd) {
    LenientContentTypes opened(TYPES_START + XML + "<Default Extension='rels' ContentType='" + RELS +
                                   "'/><Override PartName='/B.png' ContentType='t/png'/></Types>",
                               {u"/_rels/a.xml.rels"});
    opened.store.setPart(u"/_rels/a.xml.rels", relationships(""));
    opened.package.open(opc::interfaces::OpenMode::ReadOnly);
    EXPECT_EQ(opened.look(), "/a.xml=t/xml /b.png=t/png ");
    EXPECT_EQ(opened.scripted.countCalls("getInputStream"), 1U);
    EXPECT_EQ(opened.scripted.countCalls("getContentTypeInputStream"), 1U);
    EXPECT_EQ(opened.scripted.countCalls("openStream"), 0U);
}

TEST(LenientContentTypes, areReadEachEntryByItself) {
    const auto check = [](const Bytes& document, const std::string& seen, const std::string& oddities) {
        LenientContentTypes types(document);
        types.package.open(OpenMode::ReadWrite);
        EXPECT_EQ(types.look(), seen + " ");
        EXPECT_EQ(types.oddities(), oddities.empty() ? "" : oddities + " ");
        const bool isReadAlike = oddities.empty() || oddities.find("M2.5") == 0 || oddities == "M1.20:1";
        EXPECT_EQ(types.package.getIgnoredItems().empty(), isReadAlike);
        types.package.close(false);
        EXPECT_EQ(types.scripted.countCalls("getContentTypeOutputStream"), 0U);
    };
    forEachCase("lenient/content-types.txt",
                [&](const std::string& document, const std::string& seen, const std::string& oddities) {
                    for (const Bytes& encoded : inAllEncodings(document))
                        check(encoded, seen, oddities);
                });
}

TEST(LenientContentTypes, nameTheEntryThatCouldHaveCoveredAHiddenPart) {
    LenientContentTypes types(TYPES_START + XML + "\n<Override PartName='/b.png' ContentType='x'/>" +
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
    const auto change = [](LenientContentTypes& types, const std::string& command) {
        const auto arguments = words(command);
        if (arguments[0] == "create")
            types.create(arguments.at(1), arguments.at(2));
        else if (arguments[0] == "remove")
            types.remove(arguments.at(1));
        else if (arguments[0] == "retype")
            types.package.setContentType(PartName(opc::toString(arguments.at(1), true)),
                                         opc::model::ContentType(opc::toString(arguments.at(2), true)));
        else if (arguments[0] == "relate")
            types.relate(arguments.at(1));
        else if (arguments[0] == "save")
            types.writeAndGoOn();
        else
            ADD_FAILURE() << command;
    };
    const auto check = [&](const std::u16string& more, const std::string& before, const std::string& changes,
                           const std::string& after) {
        LenientContentTypes types(before, words(more));
        if (!more.empty())
            types.store.setPart(u"/_rels/.rels", relationships(""));
        types.package.open(OpenMode::ReadWrite);
        for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = changes.find(';', start);
            change(types, changes.substr(start, end - start));
        }
        const std::string seen = types.look();
        const std::size_t hidden = types.lenient.hiddenItems().size();
        types.package.close(false);
        EXPECT_EQ(types.types(), after);
        types.package.open(OpenMode::ReadOnly);
        EXPECT_EQ(types.look(), seen);
        EXPECT_EQ(types.lenient.hiddenItems().size(), hidden);
    };
    forEachCase("lenient/content-types-changed.txt", check);
}

TEST(LenientContentTypes, areWrittenAgainAfterAFailure) {
    LenientContentTypes types(TYPES_START + XML + "</Types>");
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
          TYPES_START + XML + "<Default Extension='png' ContentType='x'></Types>"}) {
        LenientContentTypes types(document);
        EXPECT_THROW(types.package.open(OpenMode::ReadOnly), opc::model::InvalidContentTypeStream)
            << document;
        EXPECT_TRUE(types.lenient.getOddities().empty());
    }
    // The model gets another document if relationships parts aren't covered.
    LenientContentTypes types("<?xml wrong='' version='1.0'?>" + TYPES_START + XML + "</Types>",
                              {u"/_rels/a.xml.rels"});
    EXPECT_THROW(types.package.open(OpenMode::ReadOnly), opc::model::InvalidContentTypeStream);
}

} // namespace
