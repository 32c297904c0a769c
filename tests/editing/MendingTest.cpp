#include "inspection/Mendable.hpp"
#include "support/Throws.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>

/// For each rule that can be mended a package that breaks it. What holds for every package is expected of all packages in the
/// tests of inspection as well (`expectMends`).

namespace opc::test {
namespace {

using editing::Mending;
using inspection::InspectionOptions;
using Items = std::vector<RawItem>;

const std::string TYPE = "http://a/b";
const std::string OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::string CORE_TYPE = "application/vnd.openxmlformats-package.core-properties+xml";
const std::string CORE_RELATIONSHIP =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const std::string THUMBNAIL =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail";
const std::string PNG = "\x89PNG\r\n\x1A\n";
const std::string RELS_NAMESPACE = "http://schemas.openxmlformats.org/package/2006/relationships";
const std::string RELS = "<Relationships xmlns='" + RELS_NAMESPACE + "'>";

std::string overrideOf(const std::string& name, const std::string& type) {
    return "<Override PartName='" + name + "' ContentType='" + type + "'/>";
}
std::string defaultOf(const std::string& extension, const std::string& type) {
    return "<Default Extension='" + extension + "' ContentType='" + type + "'/>";
}
std::string relationship(const std::string& id, const std::string& type, const std::string& target,
                         const std::string& more = {}) {
    return "<Relationship Id='" + id + "' Type='" + type + "' Target='" + target + "' " + more + "/>";
}

Bytes related(const std::string& elements, Items more = {}) {
    more.push_back(relationshipsWith(TO_DOCUMENT + elements));
    return packageWith(more);
}

/// With a part that the package leads to, and more entries of the content types stream.
Bytes typed(const std::string& entries, const std::string& name = "a.png", const std::string& content = PNG) {
    return related(relationship("rId2", TYPE, name), {contentTypesWith(entries), stored(name, content)});
}

Bytes withRelationships(const std::string& text) {
    return packageWith({stored("_rels/.rels", text)});
}

Bytes withDocument(const std::function<void(RawItem&)>& change) {
    Items items = smallItems();
    change(items.back());
    return makeZip(items);
}

Bytes inArchive(const std::function<void(RawArchive&)>& change) {
    RawArchive archive;
    archive.items = smallItems();
    change(archive);
    return makeArchive(archive);
}

Bytes core(const std::string& elements, const std::string& declarations = {}, Items more = {},
           const std::string& type = CORE_TYPE) {
    more.insert(more.begin(), contentTypesWith(overrideOf("/core.xml", type)));
    more.push_back(stored(
        "core.xml", "<cp:coreProperties "
                    "xmlns:cp='http://schemas.openxmlformats.org/package/2006/metadata/core-properties' "
                    "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:dcterms='http://purl.org/dc/terms/' "
                    "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' " +
                        declarations + ">" + elements + "</cp:coreProperties>"));
    return related(relationship("rIdC", CORE_RELATIONSHIP, "core.xml"), std::move(more));
}

Bytes withItems(const Items& more, const std::string& entries, const std::string& relationships) {
    Items items = itemsWith({contentTypesWith(entries), relationshipsWith(TO_DOCUMENT + relationships)});
    items.insert(items.end(), more.begin(), more.end());
    return makeZip(items);
}

Bytes withoutTypes() {
    Items items = itemsWith(
        {relationshipsWith(TO_DOCUMENT + relationship("rId2", TYPE, "a.png")), stored("a.png", PNG)});
    items.erase(items.begin());
    return makeZip(items);
}

std::string utf16(const std::string& text) {
    std::string encoded = "\xFF\xFE";
    for (const char c : text)
        encoded.append({c, '\0'});
    return encoded;
}

RawItem changed(RawItem item, const std::function<void(RawItem&)>& change) {
    change(item);
    return item;
}

struct Case {
    const char* rule;
    Bytes broken;
};

std::vector<Case> archiveCases() {
    Bytes cutOff = packageWith();
    cutOff.resize(cutOff.size() - 40);
    const RawItem first = stored("a.png/[0].piece", PNG.substr(0, 4));
    const RawItem last = stored("a.png/[1].last.piece", PNG.substr(4));
    Items lastFirst = itemsWith({first, last, contentTypesWith(defaultOf("png", "image/png")),
                                 relationshipsWith(TO_DOCUMENT + relationship("rId2", TYPE, "a.png"))});
    std::reverse(lastFirst.begin(), lastFirst.begin() + 3);
    const std::string png = defaultOf("png", "image/png");
    const std::string toPng = relationship("rId2", TYPE, "a.png");
    const std::string field("\x99\x99\x04\0data", 8);
    return {
        {"M3.16", cutOff},
        {"M3.17", inArchive([](RawArchive& a) { a.disk = 1; })},
        {"SEC-50", inArchive([](RawArchive& a) { a.behindDirectory = "data"; })},
        {"SEC-50", inArchive([](RawArchive& a) { a.comment = "PK\5\6" + std::string(18, '\0') + "x"; })},
        {"SEC-46", inArchive([](RawArchive& a) { a.inFront = "MZ, a program"; })},
        {"SEC-46", inArchive([](RawArchive& a) { a.behind = "\n"; })},
        {"SEC-48", inArchive([](RawArchive& a) {
             a.items.push_back(
                 changed(stored("word/ghost.xml", "boo"), [](RawItem& item) { item.listed = false; }));
         })},
        {"M3.3", withItems({stored("a.png", PNG), stored("a.png", PNG)}, png, toPng)},
        {"M1.12", withItems({stored("a.png", PNG), stored("A.png", PNG)}, png, toPng)},
        {"M3.14", withDocument([](RawItem& item) {
             item.changeLocal = [](RawItem& local) { local.name.back() = 'L'; };
         })},
        {"M3.14", withDocument([](RawItem& item) { item.offset = 7; })},
        {"M3.8", withDocument([](RawItem& item) {
             item.extra = std::string("\x75\x78\x60\xEA", 4) + std::string(60000, '\0');
             item.comment = std::string(6000, 'c');
         })},
        {"M3.9", withDocument([](RawItem& item) {
             item.extra = std::string("\x01\x99\x07\0", 4) + std::string(7, '\0');
         })},
        {"ZIP-VERSION", withDocument([](RawItem& item) { item.versionNeeded = 63; })},
        {"ZIP-FLAGS", withDocument([](RawItem& item) { item.flags = 1U << 5; })},
        {"M2.11", withItems({first, last, stored("a.png", PNG)}, png, toPng)},
        {"M2.15", withItems({first, first, last}, png, toPng)},
        {"S2.5", withItems({last, first}, png, toPng)},
        {"S3.2", withItems({first, changed(last,
                                           [](RawItem& item) {
                                               item.localExtra = std::string("\x20\xA2\x04\0\x28\xA0\0\0", 8);
                                           })},
                           png, toPng)},
        {"SEC-47", withDocument([](RawItem& item) { item.attributes = 0104755U << 16; })},
        {"SEC-51", makeZip(smallItems(), "comment")},
        {"SEC-51", withDocument([](RawItem& item) { item.comment = "comment"; })},
        {"SEC-52", withDocument([](RawItem& item) {
             item.extra = std::string("\x75\x70\x0A\0\x01\0\0\0\0other", 14);
         })},
        {"SEC-53", withDocument([&](RawItem& item) { item.extra = field; })},
        {"S2.3", makeZip(lastFirst)}, // read while it comes, as it has pieces
    };
}

std::vector<Case> nameCases() {
    const std::string png = defaultOf("png", "image/png");
    return {
        {"M1.3", withItems({stored("media//a.png", PNG)}, png, relationship("rId2", TYPE, "media/a.png"))},
        {"M1.6", withItems({stored("a b.png", PNG)}, png, relationship("rId2", TYPE, "a%20b.png"))},
        {"M1.8", withItems({stored("%61.png", PNG)}, png, relationship("rId2", TYPE, "a.png"))},
        {"M3.2", withItems({stored("media\\a.png", PNG)}, png, relationship("rId2", TYPE, "media/a.png"))},
    };
}

std::vector<Case> documentCases() {
    const std::string end = TO_DOCUMENT + std::string("</Relationships>");
    Items types = smallItems();
    types[0].name = "[content_types].XML";
    return {
        {"M3.10", withoutTypes()},
        {"M3.10", withItems({stored("[CONTENT_TYPES].xml", contentTypesWith("").data)}, "", "")},
        {"M1.17", withRelationships("<?xml version='1.0' encoding='ISO-8859-1'?><!--\xE4-->" + RELS + end)},
        {"M1.17", withRelationships("<?xml version='1.0' encoding='no-such'?>" + RELS + end)},
        {"M1.18", withRelationships("<!-- c --><!DOCTYPE Relationships>" + RELS + end)},
        {"M1.20", withRelationships(
                      "<r:Relationships xmlns:r='http://schemas.microsoft.com/package/2005/06/relationships'>"
                      "<r:Relationship Id='rId1' Type='" +
                      OFFICE + "officeDocument' Target='word/document.xml'/></r:Relationships>")},
        {"M1.20", related(relationship("rId2", TYPE, "http://a/", "TargetMode='external'"))},
        {"M1.20", related(relationship("rId2", TYPE, "http://a/", "TargetMode='External' a='b'"))},
        {"M1.21", withRelationships("<Relationships xml:base='/a/' xmlns='" + RELS_NAMESPACE + "'>" + end)},
        {"SEC-36", withRelationships("<p:Relationships xmlns:p='" + RELS_NAMESPACE +
                                     "'><p:Relationship Id='rId1' Type='" + OFFICE +
                                     "officeDocument' Target='word/document.xml'/></p:Relationships>")},
        {"SEC-36", withRelationships(utf16("<?xml version='1.0' encoding='UTF-16'?>" + RELS + end))},
        {"SEC-36", makeZip(types)},
        {"M2.6", typed(defaultOf(".png", "image/png"))},
        {"M2.6", typed(defaultOf("png", "image/png") + defaultOf("", "a/b"))},
        {"M2.6", typed(defaultOf("png", "image/png") + "<Default Extension='b'/>")},
        {"M2.7", typed(defaultOf("png", "image/png") + overrideOf("/b/", "a/b"))},
        {"M1.4", typed(overrideOf("a.png", "image/png"))},
        {"M1.13", typed(overrideOf("/a.png", "png"))},
        {"M1.13", typed(defaultOf("png", ""))},
        {"M1.14", typed(overrideOf("/a.png", " image/ png"))},
        {"M1.15", typed(overrideOf("/a.png", "image/png (a picture)"))},
        {"M1.22", core("", {}, {contentTypesWith(overrideOf("/core.xml", CORE_TYPE + ";a=b"))})},
        {"M2.5", typed(defaultOf("png", "image/png") + defaultOf("PNG", "image/png"))},
        {"M2.1", typed(defaultOf("png", "image/png") + overrideOf("/%5BContent_Types%5D.xml", "a/b"))},
        {"M2.1", related(relationship("rId2", TYPE, "/%5BContent_Types%5D.xml"))},
        {"M1.2", typed("")},
        {"M1.30", packageWith({contentTypesWith(overrideOf("/_rels/.rels", "application/xml"))})},
        {"SEC-31", packageWith({stored("__MACOSX/._a", "a")})},
        {"SEC-32", packageWith({stored("word/.DS_Store", "a")})},
        {"SEC-35", packageWith({contentTypesWith(overrideOf("/b.b", "a/b") + defaultOf("b", "a/b"))})},
    };
}

std::vector<Case> relationshipCases() {
    const std::string external = "TargetMode='External'";
    const std::string created = "<dcterms:created>2020-01-01T00:00:00Z</dcterms:created>";
    const std::string title = "<dc:title>a</dc:title>";
    return {
        {"M1.25", related("", {relationshipsWith("", "_rels/_rels/.rels.rels")})},
        {"M1.25", related(relationship("rId2", TYPE, "/_rels/.rels"))},
        {"M1.26", related(relationship("rId1", TYPE, "http://a/", external))},
        {"M1.26", related(relationship("1", TYPE, "http://a/", external))},
        {"M1.26", related("<Relationship Type='http://a/b' Target='http://a/' TargetMode='External'/>")},
        {"M1.28", related(relationship("rId2", TYPE, ""))},
        {"M1.28", related(relationship("rId2", TYPE, "http://a/%#b#c[", external))},
        {"M1.28", related(relationship("rId2", TYPE, "1http:/a", external))},
        {"M1.28", withItems({stored("a b.png", PNG)}, defaultOf("png", "image/png"),
                            relationship("rId2", TYPE, "a b.png"))},
        {"M1.29", related(relationship("rId2", OFFICE + "hyperlink", "http://a/"))},
        {"SEC-17", related(relationship("rId2", TYPE, "NULL"))},
        {"SEC-17", related(relationship("rId2", TYPE, "../word/document.xml"))},
        {"SEC-17", related(relationship("rId2", TYPE, "word/document.xml?a"))},
        {"SEC-34", packageWith({relationshipsWith("", "word/_rels/other.xml.rels")})},
        {"M4.1", core(title, {}, {relationshipsWith("")}, "application/xml")},
        {"M4.1", related(relationship("rId2", CORE_RELATIONSHIP, "other.xml"))},
        {"M4.1",
         withItems({stored("core.xml",
                           "<coreProperties xmlns="
                           "'http://schemas.openxmlformats.org/package/2006/metadata/core-properties'/>")},
                   overrideOf("/core.xml", CORE_TYPE),
                   relationship("rIdC", CORE_RELATIONSHIP, "core.xml") +
                       relationship("rId2", CORE_RELATIONSHIP, "core.xml"))},
        {"M4.2",
         core(title,
              "xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006' m:Ignorable='dc'")},
        {"M4.3", core(title + "<dcterms:issued>2020</dcterms:issued>")},
        {"M4.4", core("<dc:title xml:lang='en'>a</dc:title>")},
        {"M4.5", core(created)},
        {"M4.5", core("<d:created xmlns:d='http://purl.org/dc/terms/' "
                      "xsi:type='dc:W3CDTF'>2020-01-01T00:00:00Z</d:created>")},
        {"M1.21", core(title, "xml:base='/a/'")},
        {"CORE-SCHEMA", core(title + title)},
        {"P1-2",
         core(title, {},
              {relationshipsWith(relationship("r1", TYPE, "http://a/", external), "_rels/core.xml.rels")})},
        {"M5.1", related(relationship("rIdT", THUMBNAIL, "t.png"))},
        {"M5.1", related(relationship("rIdT", THUMBNAIL, "a.png"),
                         {contentTypesWith(overrideOf("/a.png", "text/plain")), stored("a.png", PNG)})},
    };
}

Mending mendBy(const std::string& rule, const Bytes& package) {
    InspectionOptions options;
    options.only = {rule};
    options.fileName = "p.docx";
    return expectMends(package, options);
}

std::string toldBy(const Mending& mending) {
    std::ostringstream lines;
    for (const editing::Mended& one : mending.mended)
        lines << one.rule->id << ' ' << one.place.part << one.place.item << '#' << one.place.relationship
              << ' ' << one.what << '\n';
    for (const inspection::Finding& finding : mending.left)
        lines << "left " << finding.rule->id << ' ' << finding.message << ". " << finding.hint << '\n';
    return lines.str();
}

TEST(Mending, mendsEachRule) {
    std::set<std::string> mended;
    for (const auto& cases : {archiveCases(), nameCases(), documentCases(), relationshipCases()})
        for (const auto& [rule, broken] : cases) {
            SCOPED_TRACE(rule);
            InspectionOptions all;
            all.profiles = inspection::EVERY_PROFILE;
            all.fileName = "p.docx";
            expectMends(broken, all);
            const Mending mending = mendBy(rule, broken);
            EXPECT_TRUE(mending.left.empty()) << toldBy(mending);
            EXPECT_FALSE(mending.mended.empty());
            mended.insert(rule);
        }
    for (const inspection::Rule* const rule : inspection::rules())
        EXPECT_EQ(mended.count(std::string(rule->id)) != 0, !editing::mendsOf(rule->id).empty()) << rule->id;
}

/// What only a person can decide, or would miss.
TEST(Mending, leavesWhatIsntCertain) {
    const std::string used =
        "<w:document xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main' "
        "xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'>"
        "<w:p r:id='r2' r:embed='1'/></w:document>";
    const auto ofDocument = [&used](const std::string& elements, const std::string& markup = {}) {
        return packageWith({stored("word/document.xml", markup.empty() ? used : markup),
                            relationshipsWith(elements, "word/_rels/document.xml.rels")});
    };
    const std::string external = "TargetMode='External'";
    const Case cases[] = {
        {"SEC-17", ofDocument(relationship("r2", TYPE, "NULL"))},
        {"SEC-17", ofDocument(relationship("r3", TYPE, "NULL"),
                              utf16("<?xml version='1.0' encoding='UTF-16'?>" + used))},
        {"SEC-17",
         packageWith({relationshipsWith(relationship("rId1", OFFICE + "officeDocument", "word/gone.xml"))})},
        {"M1.26", ofDocument(relationship("1", TYPE, "http://a/", external))},
        {"M1.26", ofDocument(relationship("r2", TYPE, "http://a/", external) +
                             relationship("r2", TYPE, "http://b/", external))},
        {"M1.29", related(relationship("rId2", OFFICE + "image", "http://a/"))},
        {"M3.3", withItems({stored("a.png", PNG), stored("a.png", PNG + "1")}, defaultOf("png", "image/png"),
                           relationship("rId2", TYPE, "a.png"))},
        {"M3.14", withDocument([](RawItem& item) { ++item.crc; })},
        {"M1.2", typed("", "a.bin", "anything")},
        {"M1.18",
         withRelationships("<!DOCTYPE a [<!ENTITY b 'c'>]>" + RELS + TO_DOCUMENT + "</Relationships>")},
        {"M1.20", withRelationships(RELS)},
        {"M2.5", typed(defaultOf("png", "image/png") + defaultOf("PNG", "image/jpeg"))},
        {"SEC-32", packageWith({stored("notes", "mine")})},
        {"SEC-47", withDocument([](RawItem& item) { item.attributes = 0120777U << 16; })},
    };
    for (const auto& [rule, package] : cases) {
        SCOPED_TRACE(rule);
        const Mending mending = mendBy(rule, package);
        EXPECT_TRUE(mending.mended.empty()) << toldBy(mending);
        ASSERT_FALSE(mending.left.empty());
        EXPECT_FALSE(mending.left.front().hint.empty()) << "it says why";
    }
}

std::string contentOf(const Mending& mending, const std::string& name) {
    for (const inspection::ArchiveItem& item : mending.archive.items()) {
        if (item.name != name)
            continue;
        const auto stream = mending.archive.open(item);
        stream->open();
        std::string content(static_cast<std::size_t>(item.central->size), '\0');
        stream->read(reinterpret_cast<unsigned char*>(content.data()), content.size());
        return content;
    }
    return {};
}

/// What isn't mended in a document keeps its bytes: white space, quotes, comments, the order of attributes.
TEST(Mending, changesDocumentsInTheirOwnText) {
    const std::string old =
        "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<r:Relationships  xmlns:r='" + RELS_NAMESPACE + "'>\n" +
        "  <r:Relationship Target = \"word/document.xml\" Id='rId1' Type='" + OFFICE +
        "officeDocument'></r:Relationship><!-- a -->\n\t<r:Relationship Id='rId1' Type='" + TYPE +
        "' Target='http://a/%' TargetMode='external' /> \n" + "<r:Relationship Id='x' Type='" + TYPE +
        "' Target='NULL' b='c'/>\n</r:Relationships>\n";
    const std::string mended =
        "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<r:Relationships  xmlns:r='" + RELS_NAMESPACE + "'>\n" +
        "  <r:Relationship Target = \"word/document.xml\" Id='rId1' Type='" + OFFICE +
        "officeDocument'></r:Relationship><!-- a -->\n\t<r:Relationship Id='rId4' Type='" + TYPE +
        "' Target='http://a/%25' TargetMode='External' /> \n" + "\n</r:Relationships>\n";
    const Mending mending = expectMends(withRelationships(old), {});
    EXPECT_EQ(contentOf(mending, "_rels/.rels"), mended) << toldBy(mending);
    EXPECT_TRUE(mending.left.empty()) << toldBy(mending);
}

TEST(Mending, savesWhatIsWholeOfACutOffArchive) {
    Items items = itemsWith({stored("big.bin", std::string(1000, 'x'))});
    Bytes archive = makeZip(items);
    const std::string big(100, 'x');
    const auto cut = std::search(archive.begin(), archive.end(), big.begin(), big.end()) + 500;
    archive.erase(cut, archive.end());
    const Mending mending = mendBy("M3.16", archive);
    EXPECT_EQ(toldBy(mending),
              "M3.16 # The archive is written anew with the items that are there: 3; lost: big.bin\n");
    EXPECT_EQ(contentOf(mending, "word/document.xml"), items[2].data);
}

TEST(Mending, mendsFaultsBehindFaults) {
    Items items = itemsWith({stored("a.png", PNG), stored("word/.DS_Store", "a")});
    items.erase(items.begin());
    items[0] = relationshipsWith(TO_DOCUMENT + relationship("rId1", TYPE, "a.png") +
                                 relationship("r 3", TYPE, "NULL"));
    RawArchive archive;
    archive.items = items;
    archive.inFront = "junk";
    InspectionOptions options;
    options.fileName = "p.docx";
    const Mending mending = expectMends(makeArchive(archive), options);
    EXPECT_TRUE(mending.left.empty()) << toldBy(mending);
    EXPECT_EQ(
        contentOf(mending, "[Content_Types].xml"),
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Types "
        "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default Extension=\"rels\" "
        "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/><Override "
        "PartName=\"/word/document.xml\" "
        "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\"/"
        "><Override "
        "PartName=\"/a.png\" ContentType=\"image/png\"/></Types>");
}

/// The work grows with the package, however many faults there are of each kind.
TEST(Mending, mendsManyFaults) {
    std::string elements = TO_DOCUMENT;
    std::string entries;
    for (int i = 0; i < 5000; ++i)
        elements += relationship("1", TYPE, i % 2 == 0 ? "NULL" : "http://a/%",
                                 i % 2 == 0 ? "" : "TargetMode='External'");
    for (int i = 0; i < 5000; ++i)
        entries += defaultOf("a", i % 3 == 0 ? "a" : "a/b");
    const Mending mending =
        expectMends(packageWith({contentTypesWith(entries), relationshipsWith(elements)}), {});
    EXPECT_TRUE(mending.left.empty()) << mending.left.size();
}

} // namespace
} // namespace opc::test
