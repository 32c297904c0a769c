#include "RawZip.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Comparison.hpp>
#include <opc/inspection/ContentHash.hpp>
#include <opc/inspection/FlatText.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace opc::inspection {
namespace {

using test::contentTypesWith;
using test::itemsWith;
using test::makeZip;
using test::oddlyDeflated;
using test::RawItem;
using test::relationshipsWith;
using test::stored;
using test::TO_DOCUMENT;

using Items = std::vector<RawItem>;

std::string describe(const std::vector<ContentDifference>& contents, const std::string& what) {
    static constexpr const char* KINDS[] = {"added", "removed", "moved", "changed"};
    std::string text;
    for (const ContentDifference& one : contents) {
        text += std::string(KINDS[static_cast<int>(one.kind)]) + what;
        for (const auto* version : {&one.before, &one.now})
            text += *version ? ' ' + (*version)->name : "";
        text += one.hasOtherContent ? " content" : "";
        text += one.hasOtherType ? " type" : "";
        text += (one.unreadable.empty() ? "" : " unreadable") + std::string("\n");
    }
    return text;
}

/// A line for each difference.
std::string describe(const Comparison& comparison) {
    std::string text = describe(comparison.parts, "") + describe(comparison.items, " item");
    for (const RelationshipDifference& one : comparison.relationships) {
        text += one.source;
        for (const auto* version : {&one.before, &one.now})
            text += *version ? ' ' + (*version)->id + '>' + (*version)->target : " none";
        text += '\n';
    }
    for (const PropertyDifference& one : comparison.properties)
        text += one.name + ": " + one.before.value_or("none") + " to " + one.now.value_or("none") + '\n';
    return text;
}

RawItem relationshipsOf(const std::string& part, const std::string& elements) {
    return relationshipsWith(elements, "word/_rels/" + part + ".rels");
}

std::string relationshipTo(const std::string& id, const std::string& target, const std::string& more = {}) {
    return "<Relationship Id=\"" + id + "\" Type=\"urn:t\" Target=\"" + target + "\" " + more + "/>";
}

std::string override(const std::string& part, const std::string& type) {
    return "<Override PartName=\"" + part + "\" ContentType=\"" + type + "\"/>";
}

RawItem changed(RawItem item, const std::function<void(RawItem&)>& change) {
    change(item);
    return item;
}

RawItem damaged(RawItem item) {
    return changed(std::move(item), [](RawItem& one) { ++one.crc; });
}

RawItem hidden(RawItem item) {
    return changed(std::move(item), [](RawItem& one) { one.listed = false; });
}

const char* const BIN_TYPE = "<Default Extension=\"bin\" ContentType=\"a/b\"/>";

/// Each package that is the same in content has the same hash, and the other way round.
TEST(Comparison, tellsWhatDiffersAndNothingElse) {
    const std::string core =
        R"(<c:coreProperties xmlns:c="http://schemas.openxmlformats.org/package/2006/metadata/core-properties")"
        R"( xmlns:d="http://purl.org/dc/elements/1.1/">)";
    const RawItem toCore = relationshipsWith(
        TO_DOCUMENT +
        std::string(
            R"(<Relationship Id="c" Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties" Target="core.xml"/>)"));
    const RawItem coreType =
        contentTypesWith(override("/core.xml", "application/vnd.openxmlformats-package.core-properties+xml"));
    const std::string links =
        relationshipTo("a", "a.bin") + relationshipTo("b", "http://x/", "TargetMode='External'");
    const struct {
        const char* name;
        Items before, now;
        std::string differences;
    } cases[] = {
        {"how relationships are written",
         {relationshipsOf("document.xml", links)},
         {relationshipsOf("document.xml",
                          "<!-- --><Relationship TargetMode='External' Target='http://x/' "
                          "Type='urn:t' Id='b'></Relationship>" +
                              relationshipTo("a", "../word/./A.bin", "TargetMode='Internal'"))},
         ""},
        {"how content types are written",
         {contentTypesWith(BIN_TYPE), stored("a.bin", "1")},
         {contentTypesWith(override("/A.bin", "A/b") + override("/none.xml", "c/d")), stored("a.bin", "1")},
         ""},
        {"compression and times",
         {stored("word/a.bin", std::string(60000, 'a'))},
         {changed(oddlyDeflated("word/a.bin", std::string(60000, 'a')), [](RawItem& one) { one.time = 0; })},
         ""},
        {"letter case, and folders", {stored("a.bin", "1"), stored("b/", "")}, {stored("A.BIN", "1")}, ""},
        {"pieces",
         {stored("a.bin", "123456")},
         {stored("a.bin/[1].last.piece", "56"), stored("a.bin/[0].piece", "1234")},
         ""},
        {"no relationships", {relationshipsOf("document.xml", "")}, {}, ""},
        {"the same size and checksum",
         {stored("a.bin", "plumless")},
         {stored("a.bin", "buckeroo")},
         "changed /a.bin /a.bin content\n"},
        {"the end of a long content",
         {stored("a.bin", std::string(200000, 'a') + '1')},
         {stored("a.bin", std::string(200000, 'a') + '2')},
         "changed /a.bin /a.bin content\n"},
        {"parts that come and go",
         {stored("a.bin", "1")},
         {stored("b.bin", "2")},
         "removed /a.bin\nadded /b.bin\n"},
        {"a type",
         {contentTypesWith(BIN_TYPE), stored("a.bin", "1")},
         {contentTypesWith(override("/a.bin", "a/c")), stored("a.bin", "1")},
         "changed /a.bin /a.bin type\n"},
        {"a type of relationships",
         {contentTypesWith(""), relationshipsOf("document.xml", links)},
         {contentTypesWith(override("/word/_rels/document.xml.rels", "a/c")),
          relationshipsOf("document.xml", links)},
         "changed /word/_rels/document.xml.rels /word/_rels/document.xml.rels type\n"},
        {"a part that moves with its relationships",
         {contentTypesWith(BIN_TYPE), stored("word/a.bin", "12"), relationshipsOf("a.bin", links),
          relationshipsOf("document.xml", relationshipTo("m", "a.bin"))},
         {contentTypesWith(BIN_TYPE), stored("word/x/b.bin", "12"),
          relationshipsWith(relationshipTo("a", "../a.bin") +
                                relationshipTo("b", "http://x/", "TargetMode='External'"),
                            "word/x/_rels/b.bin.rels"),
          relationshipsOf("document.xml", relationshipTo("m", "x/b.bin"))},
         "moved /word/a.bin /word/x/b.bin\n/word/document.xml m>a.bin m>x/b.bin\n"},
        {"one of two copies moves",
         {stored("a.bin", "12"), stored("b.bin", "12")},
         {stored("b.bin", "12"), stored("c.bin", "12"), stored("d.bin", "12"), stored("e.bin", "")},
         "moved /a.bin /c.bin\nadded /d.bin\nadded /e.bin\n"},
        {"relationships",
         {relationshipsOf("document.xml",
                          relationshipTo("a", "a") + relationshipTo("b", "b") + relationshipTo("c", "c"))},
         {relationshipsOf("document.xml", relationshipTo("b", "B?q") +
                                              relationshipTo("c", "c", "TargetMode='External'") +
                                              relationshipTo("d", "a"))},
         "/word/document.xml a>a none\n/word/document.xml b>b b>B?q\n/word/document.xml c>c c>c\n"
         "/word/document.xml none d>a\n"},
        {"relationships of a part that isn't there",
         {relationshipsOf("gone.xml", relationshipTo("a", "a"))},
         {},
         "/word/gone.xml a>a none\n"},
        {"two relationships with one Id",
         {relationshipsOf("document.xml", relationshipTo("a", "a") + relationshipTo("a", "b"))},
         {relationshipsOf("document.xml", relationshipTo("a", "a") + relationshipTo("a", "c"))},
         "/word/document.xml a>b a>c\n"},
        {"what a reader of relationships passes over",
         {relationshipsOf("document.xml", links)},
         {relationshipsOf("document.xml", links + "<Other/>")},
         "changed /word/_rels/document.xml.rels /word/_rels/document.xml.rels content\n"},
        {"relationships that end early",
         {relationshipsOf("document.xml", links + "<")},
         {},
         "removed /word/_rels/document.xml.rels\n/word/document.xml a>a.bin none\n"
         "/word/document.xml b>http://x/ none\n"},
        {"two parts of one name",
         {stored("a.bin", "1"), stored("a.bin", "2")},
         {stored("a.bin", "1"), stored("a.bin", "3")},
         "changed /a.bin /a.bin content\n"},
        {"core properties",
         {coreType, toCore,
          stored("core.xml", core + "<d:title>a</d:title><d:creator>b</d:creator></c:coreProperties>")},
         {coreType, toCore,
          stored(
              "core.xml",
              core +
                  "<c:keywords>x<c:value>y</c:value></c:keywords><d:title>c</d:title></c:coreProperties>")},
         "changed /core.xml /core.xml content\ncreator: b to none\nkeywords: none to x; y\ntitle: a to c\n"},
    };
    for (const auto& [name, before, now, differences] : cases) {
        SCOPED_TRACE(name);
        Items other = itemsWith(now);
        std::reverse(other.begin(), other.end());
        if (std::string(name) == "two parts of one name")
            other = itemsWith(now);
        const Archive left(makeZip(itemsWith(before)));
        const Archive right(makeZip(other));
        EXPECT_EQ(describe(compare(left, right)), differences);
        EXPECT_EQ(compare(right, left).isEmpty(), differences.empty());
        EXPECT_EQ(hashContent(left).sha256 == hashContent(right).sha256, differences.empty());
    }
}

TEST(Comparison, comparesWhatIsNoPartAndWhatIsDamaged) {
    const struct {
        const char* name;
        Items before, now;
        std::string differences;
    } cases[] = {
        {"ignored and hidden items",
         {stored("[trash]/0.dat", "1"), hidden(stored("word/ghost.xml", "1"))},
         {stored("[trash]/0.dat", "2"), hidden(stored("word/ghost.xml", "12"))},
         "changed item [trash]/0.dat [trash]/0.dat content\n"
         "changed item word/ghost.xml word/ghost.xml content\n"},
        {"an item of the archive that becomes a part",
         {hidden(stored("a.bin", "1"))},
         {stored("a.bin", "1")},
         "added /a.bin\nremoved item a.bin\n"},
        {"content types that can't be read in full",
         {},
         {contentTypesWith("<Other/>")},
         "added item [Content_Types].xml\n"},
        {"the same damage", {damaged(stored("a.bin", "1"))}, {damaged(stored("a.bin", "1"))}, ""},
        {"other damage",
         {damaged(stored("a.bin", "1"))},
         {stored("a.bin", "1")},
         "changed /a.bin /a.bin content unreadable\n"},
        {"a flag that keeps the same content from being read",
         {stored("a.bin", "1")},
         {changed(stored("a.bin", "1"), [](RawItem& one) { one.flags = 0x40; })},
         "changed /a.bin /a.bin content unreadable\n"},
        {"damage that moves",
         {damaged(stored("a.bin", "1"))},
         {damaged(stored("b.bin", "1"))},
         "removed /a.bin\nadded /b.bin\n"},
    };
    for (const auto& [name, before, now, differences] : cases) {
        const Archive left(makeZip(itemsWith(before)));
        const Archive right(makeZip(itemsWith(now), "comment"));
        EXPECT_EQ(describe(compare(left, right)), differences) << name;
    }
    test::Bytes cutOff = makeZip(itemsWith({}));
    cutOff.resize(cutOff.size() - 30);
    const Archive broken(cutOff);
    EXPECT_TRUE(compare(broken, broken).isEmpty());
    EXPECT_FALSE(compare(broken, Archive(makeZip(itemsWith({})))).isEmpty());
    EXPECT_THROW(compare(broken, Archive(test::Bytes{1, 2, 3})), Exception);
}

TEST(Comparison, canBeOfCertainNames) {
    const Archive left(
        makeZip(itemsWith({stored("word/a.bin", "1"), stored("word/x/a.bin", "1"), stored("odd*", "1")})));
    const Archive right(
        makeZip(itemsWith({stored("word/a.bin", "2"), stored("word/x/a.bin", "2"), stored("odd*", "2"),
                           relationshipsOf("a.bin", relationshipTo("a", "x"))})));
    const std::string first = "changed /word/a.bin /word/a.bin content\n";
    const std::string deep = "changed /word/x/a.bin /word/x/a.bin content\n";
    const std::string odd = "changed /odd* /odd* content\n";
    const std::string relationships = "/word/a.bin none a>x\n";
    const struct {
        std::vector<std::string> names;
        std::string differences;
    } cases[] = {
        {{"/WORD/A.bin"}, first + relationships},
        {{"word/*.bin"}, first + relationships},
        {{"/*/*/*"}, deep},
        {{"**.bin"}, first + deep + relationships},
        {{"/word/**/a.bin", "/o*d*"}, odd + deep},
        {{"/word/document.xml"}, ""},
        {{"/"}, ""},
    };
    for (const auto& [names, differences] : cases)
        EXPECT_EQ(describe(compare(left, right, {names})), differences) << names.front();
    EXPECT_THROW(compare(left, right, {{"/word/a.bi"}}), Exception);
}

std::string linesOf(const std::string& before, const std::string& now) {
    const Archive left(makeZip(itemsWith({stored("a.xml", before)})));
    const Archive right(makeZip(itemsWith({stored("a.xml", now)})));
    const Comparison comparison = compare(left, right);
    const TextDifference difference = compareText(comparison.parts.at(0), 0);
    switch (difference.outcome) {
    case TextDifference::Outcome::Lines:
        break;
    case TextDifference::Outcome::SameText:
        return "same";
    default:
        return "other";
    }
    std::string text;
    for (const Hunk& hunk : difference.hunks)
        for (const HunkLine& line : hunk.lines)
            text += line.mark + line.text + '\n';
    return text;
}

TEST(TextComparison, seesTheXmlBehindItsForm) {
    const struct {
        const char *before, *now, *lines;
    } cases[] = {
        {"<a x='1' y='2'><b/></a>", "<?xml version='1.0'?>\n<a y=\"2\" x=\"1\">\n  <b></b>\n</a>", "same"},
        {"<p:a xmlns:p='u' p:x='1'/>", "<a xmlns='u' xmlns:q='u' q:x='1'/>", "same"},
        {"<a>x<![CDATA[<]]>&#65;</a>", "<a>x&lt;A</a>", "same"},
        {"<a>x<!--&lt;--></a><?p d?>", "<a>x<!--<--></a>", "-  <!--&amp;lt;-->\n+  <!--&lt;-->\n-<?p d?>\n"},
        {"\xEF\xBB\xBF<a/>", "<a/>", "same"},
        {"<a xmlns:p='u' p:x='1'/>", "<a x='1'/>", "-<a p:x=\"1\"/>\n-xmlns:p=\"u\"\n+<a x=\"1\"/>\n"},
        {"<a xmlns='u'/>", "<a xmlns='v'/>", "-<a/>\n-xmlns=\"u\"\n+<ns1:a/>\n+xmlns:ns1=\"v\"\n"},
        {"<a xmlns='u'><b xmlns=''/></a>", "<a xmlns='u'><b/></a>",
         "-  <ns1:b/>\n+  <b/>\n-xmlns:ns1=\"\"\n"},
        {"<a xmlns='u' xmlns:p='u' p:x='1'/>", "<a xmlns='u' x='1'/>", "-<a :x=\"1\"/>\n+<a x=\"1\"/>\n"},
        {"<a><b/><c/></a>", "<a><c/><b/></a>", "-  <b/>\n+  <b/>\n"},
        {"<a> </a>", "<a/>", "-<a> </a>\n+<a/>\n"},
        {"<a xml:space='preserve'> <b/></a>", "<a xml:space='preserve'><b/></a>", "-  &#x20;\n"},
        {"<a>x <b/></a>", "<a>x<b/></a>", "-  x&#x20;\n+  x\n"},
        {"<a t='&#10;&quot;'/>", "<a t=' &quot;'/>", "-<a t=\"&#xA;&quot;\"/>\n+<a t=\" &quot;\"/>\n"},
        {"<a>\xE2\x80\xAE</a>", "<a>\xE2\x80\xAD</a>", "-<a>&#x202E;</a>\n+<a>&#x202D;</a>\n"},
        {"<a>\xF0\x9F\x98\x80</a>", "<a>\xC3\xA9</a>", "-<a>\xF0\x9F\x98\x80</a>\n+<a>\xC3\xA9</a>\n"},
        {"<a>", "<a/>", "other"},
        {"a", "<a/>", "other"},
    };
    for (const auto& [before, now, lines] : cases)
        EXPECT_EQ(linesOf(before, now), lines) << before;
}

TEST(TextComparison, isBoundedForDocumentsThatGrowInThisForm) {
    std::string deep;
    for (int i = 0; i < 900; ++i)
        deep += "<a>";
    std::string many;
    for (int i = 0; i < 100'000; ++i)
        many += "<b/>";
    std::string ends;
    for (int i = 0; i < 900; ++i)
        ends += "</a>";
    EXPECT_EQ(linesOf(deep + many + ends, deep + many + "<c/>" + ends).substr(81), "<c/>\n");
    std::string large = "<a>";
    for (int i = 0; i < 1'000'001; ++i)
        large += "<b/>";
    EXPECT_EQ(linesOf(large + "</a>", large + "<c/></a>"), "other");
}

TEST(FlatText, hasThePackageInOneOrder) {
    const RawItem odd = stored("odd\x1B[2J.bin", "1");
    const Items items{
        relationshipsOf("document.xml",
                        relationshipTo("b", "x") + relationshipTo("a", "http://y/", "TargetMode='External'")),
        odd, stored("[trash]/1", "12"), damaged(stored("word/bad.bin", "1")), stored("word/a.xml", "<a><b>")};
    const std::string expected =
        "package /\n"
        "  relationship rId1: "
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument -> "
        "word/document.xml\n"
        "part /odd%1B%5B2J.bin\n"
        "  type: none\n"
        "  size: 1\n"
        "  sha256: 6b86b273ff34fce19d6b804eff5a3f5747ada4eaa22f1d49c01e52ddb7875b4b\n"
        "part /word/a.xml\n"
        "  type: none\n"
        "  <a>\n"
        "  no XML: line 1, column 7\n"
        "  size: 6\n"
        "  sha256: f1650f61ee5f325adc31702414201140db3526b95106c289307ef32234cedcbb\n"
        "part /word/bad.bin\n"
        "  type: none\n"
        "  can't be read: its checksum is wrong\n"
        "part /word/document.xml\n"
        "  type: application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\n"
        "  relationship a: urn:t -> http://y/ (external)\n"
        "  relationship b: urn:t -> x\n"
        "  <w:document>\n"
        "    <w:body>\n"
        "      <w:p>\n"
        "        <w:r>\n"
        "          <w:t>text</w:t>\n"
        "        </w:r>\n"
        "      </w:p>\n"
        "    </w:body>\n"
        "  </w:document>\n"
        "  xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"\n"
        "item [trash]/1\n"
        "  no part: a trash item\n"
        "  size: 2\n"
        "  sha256: 6b51d431df5d7f141cbececcf79edf3dd861c3b4069f0b11661a3eefacbba918\n";
    std::vector<std::string> texts;
    Items all = itemsWith(items);
    for (int i = 0; i < 2; ++i) {
        std::ostringstream text;
        writeFlatText(Archive(makeZip(all)), text);
        texts.push_back(text.str());
        std::reverse(all.begin(), all.end());
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(texts[0], expected);
}

} // namespace
} // namespace opc::inspection
