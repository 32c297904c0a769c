#include "RawZip.hpp"
#include "RulePairs.hpp"

#include "rules/RuleTable.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

/// Content types, relationships and properties: for each rule a package that breaks just it, and one that nearly does.

namespace opc::inspection {
namespace {

using namespace opc::test;
using Items = std::vector<RawItem>;

struct Case {
    const char* rule;
    Bytes broken;
    Bytes close;
};

/// Only what the rules of this file find counts: a package may break one of another concern as well.
std::vector<std::string> ownRules() {
    std::vector<std::string> ids;
    for (const RuleRows rows : {contentTypeRules(), relationshipRules(), propertyRules()})
        for (std::size_t i = 0; i < rows.count; ++i)
            ids.emplace_back(rows.first[i].id);
    return ids;
}

std::vector<std::string> findings(const Bytes& package) {
    InspectionOptions options;
    options.only = ownRules();
    return findingsOf(package, options);
}

/// The ids of the rules in such lines, each once.
std::string idsIn(const std::vector<std::string>& lines) {
    std::set<std::string> ids;
    for (const std::string& line : lines)
        ids.insert(line.substr(line.find(' ') + 1, line.find(' ', line.find(' ') + 1) - line.find(' ') - 1));
    std::string joined;
    for (const std::string& id : ids)
        joined += (joined.empty() ? "" : " ") + id;
    return joined;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines)
        all += line + '\n';
    return all;
}

const std::string TYPES = R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)";
const std::string RELS_TYPE = "application/vnd.openxmlformats-package.relationships+xml";
const std::string DOCUMENT_OVERRIDE =
    R"(<Override PartName="/word/document.xml" ContentType="application/x"/>)";
const std::string RELS =
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";
const std::string CORE_RELATIONSHIP =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const std::string THUMBNAIL =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail";
const std::string OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::string CORE_TYPE = "application/vnd.openxmlformats-package.core-properties+xml";

std::string defaultOf(const std::string& extension, const std::string& type) {
    return "<Default Extension='" + extension + "' ContentType='" + type + "'/>";
}
std::string overrideOf(const std::string& name, const std::string& type) {
    return "<Override PartName='" + name + "' ContentType='" + type + "'/>";
}
std::string relationship(const std::string& id, const std::string& type, const std::string& target,
                         const std::string& more = {}) {
    return "<Relationship Id='" + id + "' Type='" + type + "' Target='" + target + "' " + more + "/>";
}

/// The package with more in its relationships part.
Bytes related(const std::string& elements, Items more = {}) {
    more.push_back(relationshipsWith(TO_DOCUMENT + elements));
    return packageWith(more);
}

/// With a part that its document leads to, which has this type.
Bytes typed(const std::string& type) {
    return related(relationship("rId2", "http://a/b", "a.bin"),
                   {contentTypesWith(overrideOf("/a.bin", type)), stored("a.bin", "a")});
}

/// With entries in the content types stream, and one part with the extension a.
Bytes entries(const std::string& entries) {
    return related(relationship("rId2", "http://a/b", "a.a"),
                   {contentTypesWith(entries), stored("a.a", "a")});
}

/// With this as a whole document in an item.
Bytes document(const std::string& item, const std::string& text) {
    return packageWith({stored(item, text)});
}

/// With a content types stream of these entries alone, and that for the document.
Bytes contentTypes(const std::string& entries) {
    return document("[Content_Types].xml", TYPES + entries + DOCUMENT_OVERRIDE + "</Types>");
}

Bytes rootRelationships(const std::string& prolog, const std::string& root,
                        const std::string& end = "</Relationships>") {
    return document("_rels/.rels", prolog + root + TO_DOCUMENT + end);
}

/// With core properties that hold these elements.
Bytes core(const std::string& elements, const std::string& declarations = {},
           const std::string& relation = {}, Items more = {}) {
    more.insert(more.begin(), contentTypesWith(overrideOf("/core.xml", CORE_TYPE)));
    more.push_back(stored(
        "core.xml", "<cp:coreProperties "
                    "xmlns:cp='http://schemas.openxmlformats.org/package/2006/metadata/core-properties' "
                    "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:dcterms='http://purl.org/dc/terms/' "
                    "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' " +
                        declarations + ">" + elements + "</cp:coreProperties>"));
    return related(relationship("rIdC", CORE_RELATIONSHIP, "core.xml") + relation, std::move(more));
}

/// With a thumbnail of this type.
Bytes thumbnail(const std::string& type, const std::string& target = "t.png") {
    return related(relationship("rIdT", THUMBNAIL, target),
                   {contentTypesWith(defaultOf("png", type)), stored("t.png", "\x89PNG")});
}

Bytes withoutContentTypes() {
    Items items = smallItems();
    items.erase(items.begin());
    return makeZip(items);
}

/// With a second content types stream.
Items twice(Items items, const std::string& name) {
    items.push_back(stored(name, items.front().data));
    return items;
}

Items lastFirst(Items items) {
    std::reverse(items.begin(), items.end());
    return items;
}

Items interleavedItems() {
    return itemsWith({relationshipsWith(TO_DOCUMENT + relationship("rId2", "http://a/b", "a.a")),
                      contentTypesWith(defaultOf("a", "a/b")), stored("a.a/[0].piece", "a"),
                      stored("a.a/[1].last.piece", "b")});
}

std::string utf16(const std::string& text) {
    std::string encoded = "\xFF\xFE";
    for (const char c : text)
        encoded.append({c, '\0'});
    return encoded;
}

/// With one item under another name.
Bytes renamed(const std::string& item, const std::string& name) {
    Items items = smallItems();
    for (RawItem& one : items)
        one.name = one.name == item ? name : one.name;
    return makeZip(items);
}

/// With a part whose type is a Default.
Bytes typedByDefault(const std::string& extension, const std::string& type) {
    return related(relationship("rId2", "http://a/b", "a." + extension),
                   {contentTypesWith(defaultOf(extension, type)), stored("a." + extension, "a")});
}

/// With a part that the package leads to by a type of office documents.
Bytes office(const std::string& type, const std::string& text) {
    return related(relationship("rId2", OFFICE + type, "p.xml"),
                   {contentTypesWith(overrideOf("/p.xml", "application/x+xml")), stored("p.xml", text)});
}

std::vector<Case> contentTypeCases() {
    return {
        {"M3.10", withoutContentTypes(), packageWith()},
        {"M3.10", makeZip(twice(itemsWith({}), "[CONTENT_TYPES].xml")), {}},
        {"M1.17", rootRelationships("<?xml version='1.0' encoding='ISO-8859-1'?>", RELS),
         rootRelationships("<?xml version='1.0' encoding='utf-8'?>", RELS)},
        {"M1.17", rootRelationships("<?xml version='1.0' encoding='no-such'?>", RELS), {}},
        {"M1.18", rootRelationships("<!-- c --><!DOCTYPE Relationships>", RELS),
         rootRelationships("<!-- <!DOCTYPE a> -->", RELS)},
        {"M1.20", rootRelationships("", RELS, "</Relationship>"), {}},
        {"M1.20", rootRelationships("", RELS + "<Other/>"), rootRelationships("", RELS + "<!-- c -->")},
        {"M1.20", rootRelationships("", RELS + "text"), rootRelationships("", RELS + "\n")},
        {"M1.20", related(relationship("rId2", "http://a/b", "http://a/", "TargetMode='external'")),
         related(relationship("rId2", "http://a/b", "http://a/", "TargetMode='External'"))},
        {"M1.20",
         related(relationship("rId2", "http://a/b", "http://a/", "TargetMode='External' a='b'")),
         {}},
        {"M1.20",
         document("_rels/.rels",
                  "<Relationships xmlns='http://a'>" + std::string(TO_DOCUMENT) + "</Relationships>"),
         {}},
        {"M1.21", rootRelationships("", RELS.substr(0, RELS.size() - 1) + " xml:base='/a/'>"),
         core("<cp:keywords xml:lang='en'>a</cp:keywords>")},
        {"M2.10",
         entries(
             defaultOf("a", "a/b") +
             "<m:AlternateContent xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006'/>"),
         entries(
             "<Default xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006' Extension='a' "
             "ContentType='a/b'/>")},
        {"M2.6", entries(defaultOf("a", "a/b") + defaultOf(".b", "a/b")), entries(defaultOf("A", "a/b"))},
        {"M2.6", entries(defaultOf("a", "a/b") + defaultOf("", "a/b")), {}},
        {"M2.6", entries(defaultOf("a", "a/b") + "<Default Extension='b'/>"), {}},
        {"M2.7", entries(defaultOf("a", "a/b") + overrideOf("/b/", "a/b")),
         entries(overrideOf("/A.a", "a/b"))},
        {"M2.7", entries(defaultOf("a", "a/b") + "<Override ContentType='a/b'/>"), {}},
        {"M2.7", packageWith({contentTypesWith(overrideOf("/a.xml?b", "a/b"))}), {}},
        {"M1.4", entries(overrideOf("a.a", "a/b")), entries(overrideOf("/a.a", "a/b"))},
        {"M1.13", typed("ab"), typed("a/b;c=&quot;d (e) f&quot;")},
        {"M1.13", typed(""), typed("a/b; c=d")},
        {"M1.14", typed("a /b"), typed("a/b ; c=d")},
        {"M1.14", typed("a/b "), typed("a/b;c=d")},
        {"M1.15", typed("a/b (c)"), typed("a/b;c=&quot;(&quot;")},
        {"M1.22", core("", {}, {}, {contentTypesWith(overrideOf("/core.xml", CORE_TYPE + ";a=b"))}),
         typed("application/xml;a=b")},
        {"M2.5", entries(defaultOf("a", "a/b") + defaultOf("A", "a/c")), entries(overrideOf("/a.a", "a/c"))},
        {"M2.5", entries(overrideOf("/a.a", "a/b") + overrideOf("/A.a", "a/b")), {}},
        {"M2.1", entries(defaultOf("a", "a/b") + overrideOf("/%5BContent_Types%5D.xml", "a/b")), {}},
        {"M2.1", related(relationship("rId2", "http://a/b", "/%5BContent_Types%5D.xml")),
         related(
             relationship("rId2", "http://a/b", "Content_Types.xml"),
             {contentTypesWith(overrideOf("/Content_Types.xml", "a/b")), stored("Content_Types.xml", "a")})},
        {"M1.2", entries(""), entries(defaultOf("A", "a/b"))},
        {"SEC-32", packageWith({stored("Thumbs.db", "a")}),
         related(relationship("rId2", "http://a/b", "Thumbs.db"),
                 {contentTypesWith(defaultOf("db", "a/b")), stored("Thumbs.db", "a")})},
        {"S2.3", makeZip(lastFirst(interleavedItems())), makeZip(interleavedItems())},
        {"S2.3", makeZip(lastFirst(interleavedItems())), makeZip(lastFirst(itemsWith({})))},
        {"SEC-35", packageWith({contentTypesWith(overrideOf("/b.b", "a/b"))}), typed("a/b")},
        {"SEC-35", packageWith({contentTypesWith(defaultOf("b", "a/b"))}), {}},
        {"SEC-36",
         document("_rels/.rels",
                  "<p:Relationships xmlns:p='http://schemas.openxmlformats.org/package/2006/relationships'>"
                  "<p:Relationship Id='rId1' Type='" +
                      OFFICE +
                      "officeDocument' Target='word/document.xml'/>"
                      "</p:Relationships>"),
         {}},
        {"SEC-36",
         document("_rels/.rels",
                  utf16("<?xml version='1.0' encoding='UTF-16'?>" + RELS + TO_DOCUMENT + "</Relationships>")),
         {}},
        {"SEC-36", renamed("[Content_Types].xml", "[content_types].xml"), {}},
        {"SEC-36", renamed("_rels/.rels", "_RELS/.rels"),
         rootRelationships("", RELS.substr(0, RELS.size() - 1) + " xmlns:p='http://a'>")},
        {"SEC-42", typedByDefault("bin", "text/html"), typedByDefault("bin", "application/octet-stream")},
        {"SEC-42", typedByDefault("xml", "image/png"), typedByDefault("xml", "application/x+xml")},
        {"SEC-42", typedByDefault("exe", "application/octet-stream"), {}},
    };
}

std::vector<Case> relationshipCases() {
    const std::string type = "http://a/b";
    const auto to = [&](const std::string& target, const std::string& more = {}) {
        return related(relationship("rId2", type, target, more));
    };
    const auto external = [&](const std::string& target) { return to(target, "TargetMode='External'"); };
    const auto withPart = [&](const std::string& target, const std::string& item) {
        return related(relationship("rId2", type, target),
                       {contentTypesWith(defaultOf("a", "a/b")), stored(item, "a")});
    };
    const auto twoOf = [&](const std::string& first, const std::string& second, const std::string& target) {
        return packageWith(
            {contentTypesWith(defaultOf("a", "a/b")), stored("word/a.a", "a"), stored("word/b.a", "b"),
             relationshipsWith(relationship("r1", first, "a.a") + relationship("r2", second, target) +
                                   relationship("r3", type, "b.a"),
                               "word/_rels/document.xml.rels")});
    };
    return {
        {"M1.30", contentTypes(overrideOf("/_rels/.rels", "application/xml")),
         contentTypes(overrideOf("/_rels/.rels", RELS_TYPE))},
        {"M1.30", contentTypes(defaultOf("rels", "application/xml")), {}},
        {"M1.30b",
         related(relationship("rId2", type, "a.rels"), {stored("a.rels", RELS + "</Relationships>")}),
         related(relationship("rId2", type, "a.rels"),
                 {contentTypesWith(overrideOf("/a.rels", "a/b")), stored("a.rels", "a")})},
        {"M1.25", related("", {relationshipsWith("", "_rels/_rels/.rels.rels")}), {}},
        {"M1.25",
         related(relationship("rId2", type, "word/_rels/document.xml.rels"),
                 {relationshipsWith("", "word/_rels/document.xml.rels")}),
         related("", {relationshipsWith("", "word/_rels/document.xml.rels")})},
        {"M1.26", related(relationship("rId1", type, "http://a/", "TargetMode='External'")),
         related(relationship("RID1", type, "http://a/", "TargetMode='External'"))},
        {"M1.26", related(relationship("1", type, "http://a/", "TargetMode='External'")),
         related(relationship("\xC3\xA4.-1", type, "http://a/", "TargetMode='External'"))},
        {"M1.26", related("<Relationship Type='http://a/b' Target='http://a/' TargetMode='External'/>"), {}},
        {"M1.27", related(relationship("rId2", "", "http://a/", "TargetMode='External'")), {}},
        {"M1.27", related(relationship("rId2", "hyperlink", "http://a/", "TargetMode='External'")),
         related(relationship("rId2", "urn:hyperlink", "http://a/", "TargetMode='External'"))},
        {"M1.28", to(""), {}},
        {"M1.28", related("<Relationship Id='rId2' Type='http://a/b'/>"), {}},
        {"M1.28", withPart("a b.a", "a b.a"), withPart("a%20b.a", "a b.a")},
        {"M1.28", withPart("a|b.a", "a%7Cb.a"), {}},
        {"M1.28", external("http://a/%"), external("http://a/b c")},
        {"M1.28", external("http://a/[b]"), external("http://[::1]/")},
        {"M1.28", external("1http:/a"), external("a/b:c")},
        {"M1.29", to("http://a/"), external("http://a/")},
        {"M1.29", to("mailto:a@b"), withPart("./a:b.a", "a:b.a")},
        {"M1.29", to("//a/b"), withPart("/b.a", "b.a")},
        {"M7.1", external("pack://http:,,a,b.zip/c.xml"), external("pack://http%3A,,a,b.zip/c.xml")},
        {"M7.1", external("PACK://a/b.xml"), external("pack://application:,,,/a//b.xaml")},
        {"M7.1", external("pack://http%3a,,a,b.zip/c."), external("pack://http%3a,,a,b.zip/")},
        {"SEC-17", to("NULL"), withPart("./a/../b.a", "b.a")},
        {"SEC-17", withPart("../b.a", "b.a"), {}},
        {"SEC-17", withPart("b.a?c", "b.a"), {}},
        {"O1.6", packageWith({relationshipsWith(relationship("rId1", type, "word/document.xml#c"))}),
         withPart("b.a#c", "b.a")}, // whether fragments are allowed is known of a known format alone
        {"O1.7",
         related("<m:AlternateContent "
                 "xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006'><m:Choice "
                 "Requires='m'><Other/></m:Choice><m:Fallback>" +
                 relationship("rId2", type, "http://a/", "TargetMode='External'") +
                 "</m:Fallback></m:AlternateContent>"),
         rootRelationships("",
                           RELS.substr(0, RELS.size() - 1) +
                               " xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006'>")},
        {"SEC-34", packageWith({relationshipsWith("", "word/_rels/other.xml.rels")}),
         packageWith({relationshipsWith("", "word/_rels/DOCUMENT.xml.rels")})},
        {"SEC-33", packageWith({contentTypesWith(defaultOf("a", "a/b")), stored("a.a", "a")}),
         withPart("A.A", "a.a")},
        {"SEC-37", twoOf(OFFICE + "styles", OFFICE + "styles", "b.a"),
         twoOf(OFFICE + "styles", OFFICE + "styles", "A.a")},
        {"SEC-37",
         twoOf(OFFICE + "styles", "http://purl.oclc.org/ooxml/officeDocument/relationships/styles", "b.a"),
         twoOf(OFFICE + "styles", "http://a/b/styles", "b.a")},
        {"SEC-38", twoOf(OFFICE + "styles", OFFICE + "settings", "a.a"),
         twoOf(OFFICE + "styles", type, "a.a")},
    };
}

std::vector<Case> propertyCases() {
    const std::string created =
        "<dcterms:created xsi:type='dcterms:W3CDTF'>2020-01-01T00:00:00Z</dcterms:created>";
    const std::string title = "<dc:title>a</dc:title>";
    const Bytes withDrawing =
        related(relationship("rId2", OFFICE + "image", "t.png"),
                {contentTypesWith(defaultOf("png", "image/png")), stored("t.png", "\x89PNG")});
    return {
        {"M4.1",
         core(title, {}, relationship("rId3", CORE_RELATIONSHIP, "other.xml"),
              {contentTypesWith(overrideOf("/core.xml", CORE_TYPE) + overrideOf("/other.xml", CORE_TYPE)),
               stored("other.xml", "")}),
         {}},
        {"M4.1", related(relationship("rId3", CORE_RELATIONSHIP, "other.xml")), core(title)},
        {"M4.1", related(relationship("rId3", CORE_RELATIONSHIP, "http://a/", "TargetMode='External'")), {}},
        {"M4.1", core(title, {}, {}, {contentTypesWith(overrideOf("/core.xml", "application/xml"))}),
         core(title, {},
              relationship("rId3",
                           "http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/"
                           "core-properties",
                           "CORE.xml"))},
        {"M4.1", core(title, {}, relationship("rId3", CORE_RELATIONSHIP, "CORE.xml")), {}},
        {"M4.2", core(title, "xmlns:m='http://schemas.openxmlformats.org/markup-compatibility/2006'"),
         core(title, "xmlns:m='http://a'")},
        {"M4.3", core("<dcterms:issued>2020</dcterms:issued>"), core(created)},
        {"M4.4", core("<dc:title xml:lang='en'>a</dc:title>"),
         core("<cp:keywords xml:lang='en'>a</cp:keywords>")},
        {"M4.5", core("<dcterms:created>2020-01-01T00:00:00Z</dcterms:created>"),
         core("<dcterms:created xsi:type='d:W3CDTF' "
              "xmlns:d='http://purl.org/dc/terms/'>2020-01-01T00:00:00Z</dcterms:created>")},
        {"M4.5", core("<dcterms:created xsi:type='dc:W3CDTF'>2020-01-01T00:00:00Z</dcterms:created>"), {}},
        {"M4.5",
         core("<dc:title xmlns:xs='http://www.w3.org/2001/XMLSchema' xsi:type='xs:string'>a</dc:title>"),
         {}},
        {"CORE-SCHEMA", core(title + title), core(title)},
        {"CORE-SCHEMA", core("<dcterms:created xsi:type='dcterms:W3CDTF'>yesterday</dcterms:created>"), {}},
        {"M1.20", core("<dc:title>"), {}},
        {"M1.21", core(title, "xsi:schemaLocation='a b'"), {}},
        {"M1.21", core(title, "xml:base='/a/'"), {}},
        {"P1-2",
         core(title, {}, {},
              {relationshipsWith(relationship("r1", "http://a/b", "http://a/", "TargetMode='External'"),
                                 "_rels/core.xml.rels")}),
         core(title, {}, {}, {relationshipsWith("", "_rels/core.xml.rels")})},
        {"M5.1", thumbnail("text/plain"), withDrawing},
        {"M5.1", related(relationship("rIdT", THUMBNAIL, "t.png")), {}},
        {"SEC-61", thumbnail("image/png"), withDrawing},
        {"SEC-60", core("<dc:creator>A</dc:creator>"), core("<dc:creator></dc:creator>")},
        {"SEC-60", office("extended-properties", "<Properties><Company>A</Company></Properties>"),
         office("extended-properties", "<Properties><Pages>A</Pages></Properties>")},
        {"SEC-62", office("custom-properties", "<Properties><property name='A'/></Properties>"),
         office("custom-properties", "<Properties/>")},
    };
}

/// It may be valid: no rule of the standard sets a limit. Whoever looks for harm hasn't seen all of it.
TEST(PackageRules, aDocumentBeyondTheLimitsIsTold) {
    std::string nested = TO_DOCUMENT;
    for (int i = 0; i < 1001; ++i)
        nested = "<a>" + nested + "</a>";
    InspectionOptions options;
    options.only = {"M1.20", "SEC-54"};
    for (const auto& [profile, severity] : {std::pair(OPC, "warning"), {SECURITY, "error"}}) {
        options.profiles = profile;
        EXPECT_EQ(
            joined(findingsOf(rootRelationships("", RELS + nested), options)),
            severity +
                std::string(" SEC-54 /_rels/.rels: XML content can not be nested deeper than 1000 elements\n"
                            "error M1.20 /_rels/.rels: The element a can't stand here\n"));
    }
}

/// The package's own relationships that lead out of it, a core properties document in another encoding, unread
/// relationships.
TEST(PackageRules, aFaultOfTwoConcernsIsToldOnce) {
    const auto external = [](const std::string& type) {
        return related(relationship("rId3", type, "http://a/", "TargetMode='External'"));
    };
    const std::string signatures =
        "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/";
    const std::pair<Bytes, const char*> cases[] = {
        {external(CORE_RELATIONSHIP), "M4.1"},
        {external(THUMBNAIL), "M5.1"},
        {external(signatures + "origin"), "M6.1"},
        {external("http://a/b"), "SEC-16"},
        {makeZip(twice(smallItems(), "[Content_Types].xml")), "M3.3"},
        {packageWith({relationshipsWith("<")}), "M1.20"},
        {rootRelationships("", "<Relationships xmlns='http://a'>"), "M1.20"},
        {packageWith({relationshipsWith(relationship("rId1", OFFICE + "officeDocument", "gone.xml"))}),
         "P1-4"},
        {packageWith({relationshipsWith("")}), "P1-4"},
        {packageWith(
             {relationshipsWith(relationship("rId1", "http://a/b", "gone.xml"), "word/_rels/gone.xml.rels")}),
         "SEC-34"},
        {packageWith(
             {stored("word/document.xml/[0].piece", "<a"), stored("word/document.xml/[1].last.piece", "/>")}),
         "M2.11"},
        {related(relationship("rIdC", CORE_RELATIONSHIP, "core.xml"),
                 {contentTypesWith(overrideOf("/core.xml", CORE_TYPE)),
                  stored("core.xml",
                         "<?xml version='1.0' encoding='ISO-8859-1'?><cp:coreProperties xmlns:cp="
                         "'http://schemas.openxmlformats.org/package/2006/metadata/core-properties'/>")}),
         "M1.17"},
    };
    for (const auto& [package, rules] : cases)
        EXPECT_EQ(brokenRules(package), rules);
}

TEST(PackageRules, eachIsFoundWhereItIsBrokenAndOnlyThere) {
    for (const auto& cases : {contentTypeCases(), relationshipCases(), propertyCases()})
        for (std::size_t i = 0; i < cases.size(); ++i) {
            SCOPED_TRACE(cases[i].rule + (" in case " + std::to_string(i)));
            noteBroken(cases[i].rule);
            const std::vector<std::string> found = findings(cases[i].broken);
            EXPECT_EQ(idsIn(found), cases[i].rule) << joined(found);
            if (!cases[i].close.empty()) {
                noteClose(cases[i].rule);
                EXPECT_EQ(joined(findings(cases[i].close)), "");
            }
        }
}

} // namespace
} // namespace opc::inspection
