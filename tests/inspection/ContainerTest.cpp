#include "RawZip.hpp"
#include "RulePairs.hpp"

#include "support/Throws.hpp"

#include "rules/RuleTable.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <zlib.h>

namespace opc::test {
namespace {

using inspection::EVERY_PROFILE;
using inspection::InspectionOptions;

std::string field(unsigned kind, const std::string& data) {
    const auto low = [](std::size_t number) {
        return std::string{static_cast<char>(number), static_cast<char>(number >> 8)};
    };
    return low(kind) + low(data.size()) + data;
}

std::string pathField(const std::string& ofName, const std::string& name) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(ofName.data());
    const auto crc = static_cast<std::uint32_t>(::crc32(0, bytes, static_cast<uInt>(ofName.size())));
    std::string data = "\1";
    for (int i = 0; i < 4; ++i)
        data += static_cast<char>(crc >> (8 * i));
    return field(0x7075, data + name);
}

/// The document of the small package, changed.
Bytes withDocument(const std::function<void(RawItem&)>& change) {
    std::vector<RawItem> items = smallItems();
    change(items.back());
    return makeZip(items);
}

Bytes inArchive(const std::function<void(RawArchive&)>& change) {
    RawArchive archive;
    archive.items = smallItems();
    change(archive);
    return makeArchive(archive);
}

Bytes cutOff(Bytes archive, std::size_t count) {
    archive.resize(archive.size() - count);
    return archive;
}

Bytes textOf(const std::string& text) {
    return {text.begin(), text.end()};
}

RawItem in(const std::string& front, RawItem item) {
    item.inFront = front;
    return item;
}

RawItem unlisted(RawItem item) {
    item.listed = false;
    return item;
}

/// Two parts whose local headers are one and the same, and their content.
Bytes sharing() {
    std::vector<RawItem> items = smallItems();
    RawItem twin = items.back();
    twin.name = "word/twin.xml";
    twin.present = false;
    std::uint32_t offset = 0;
    for (std::size_t i = 0; i + 1 < items.size(); ++i)
        offset += static_cast<std::uint32_t>(30 + items[i].name.size() + items[i].data.size());
    twin.offset = offset;
    items.push_back(twin);
    return makeZip(items);
}

struct Case {
    const char* breaks; ///< the rules that the package breaks, infos included where the first is one
    Bytes package;
};

void expectEach(const std::vector<Case>& cases, bool infos = false) {
    for (const auto& [breaks, package] : cases) {
        SCOPED_TRACE(breaks);
        std::string lines;
        for (const std::string& line : findingsOf(package))
            lines += line + '\n';
        EXPECT_EQ(brokenRules(package, EVERY_PROFILE, infos), noted(breaks)) << lines;
    }
}

/// The first entry of the directory says that its item is in another file.
Bytes onOtherDisk() {
    Bytes archive = packageWith();
    const std::string entry = "PK\1\2";
    *(std::search(archive.begin(), archive.end(), entry.begin(), entry.end()) + 34) = 1;
    return archive;
}

TEST(Container, breaksOneRule) {
    const std::vector<RawItem> small = smallItems();
    RawItem folder = stored("word/", "");
    const RawItem document = small.back();
    expectEach({
        {"no M3.10, SEC-57", packageWith()},
        {"no M3.16, M3.17, SEC-50", makeZip(small, "", true)}, // ZIP64 records of a small archive
        {"no M3.8", withDocument([](RawItem& item) { item.zip64 = true; })},
        {"no M3.14, ZIP-FLAGS", withDocument([](RawItem& item) { item.streamed = true, item.flags = 8; })},
        {"no M3.7, SEC-49", packageWith({folder})},
        {"no SEC-46", makeZip(small, "comment")},
        {"no ZIP-METHOD", withDocument([](RawItem& item) { item = oddlyDeflated(item.name, item.data); })},
        {"SEC-57", textOf("%PDF-1.7\n")},
        {"SEC-57", {}},
        {"SEC-57", makeZip({stored("a.xml", "<a/>")})},
        {"SEC-57", makeZip({stored("mimetype", "application/vnd.oasis.opendocument.text")})},
        {"M3.10", makeZip({small.begin() + 1, small.end()})},
        {"M3.16", textOf("PK\3\4 and no more")},
        {"M3.16", cutOff(packageWith(), 40)},
        {"M3.16", inArchive([](RawArchive& a) { a.count = 9; })},
        {"M3.16", cutOff(makeZip(small, "comment"), 3)},
        {"M3.17", inArchive([](RawArchive& a) { a.disk = 1; })},
        {"M3.17", onOtherDisk()},
        {"M3.17", inArchive([](RawArchive& a) { a.behindDirectory = "PK\5\5 and a signature"; })},
        {"SEC-50", inArchive([](RawArchive& a) { a.zip64 = true, a.count = 2; })},
        {"SEC-50", inArchive([](RawArchive& a) { a.behindDirectory = "data"; })},
        // By the record in the comment, the archive is empty.
        {"SEC-50 SEC-48", makeZip(small, std::string("PK\5\6") + std::string(18, '\0'))},
        {"SEC-46", inArchive([](RawArchive& a) { a.inFront = "MZ, a program"; })},
        {"SEC-46", inArchive([](RawArchive& a) { a.behind = "\n"; })},
        {"SEC-48",
         inArchive([&](RawArchive& a) { a.items.push_back(unlisted(stored("word/ghost.xml", "boo"))); })},
        {"SEC-48", inArchive([](RawArchive& a) { a.items.back() = in("data", a.items.back()); })},
        {"no SEC-48", inArchive([](RawArchive& a) { a.beforeDirectory = std::string(7, '\0'); })},
        {"SEC-49 SEC-32", sharing()}, // that the twin has the local header of another name follows
        {"M3.8", withDocument([](RawItem& item) {
             item.extra = field(0x7875, std::string(32763, '\0')), item.comment = std::string(32767, 'c');
         })},
        {"M3.9", withDocument([](RawItem& item) { item.flags = 1; })},
        {"M3.9", withDocument([](RawItem& item) { item.extra = field(0x9901, std::string(7, '\0')); })},
        {"ZIP-METHOD", withDocument([](RawItem& item) { item.method = 12; })},
        {"ZIP-VERSION", withDocument([](RawItem& item) { item.versionNeeded = 63; })},
        {"no ZIP-VERSION", withDocument([](RawItem& item) { item.versionNeeded = 45; })},
        {"ZIP-FLAGS", withDocument([](RawItem& item) { item.flags = 1U << 5; })},
        {"no M3.9, ZIP-FLAGS", withDocument([](RawItem& item) { item.flags = 0x0806; })},
        {"M3.14", withDocument([](RawItem& item) {
             item.changeLocal = [](RawItem& local) { local.name.back() = 'L'; };
         })},
        {"M3.14",
         withDocument([](RawItem& item) { item.changeLocal = [](RawItem& local) { ++local.size; }; })},
        {"M3.14", withDocument([](RawItem& item) {
             item.streamed = true, item.flags = 8;
             item.changeLocal = [](RawItem& local) { ++local.crc; };
         })},
        {"M3.14", withDocument([](RawItem& item) { item.flags = 8; })}, // without a data descriptor
        {"M3.14", withDocument([](RawItem& item) { item.extra = field(1, "\1\2\3\4\5\6\7\x08"); })},
        {"M3.14", withDocument([](RawItem& item) {
             item.data += "<!--PK\7\x08-->";
             item = stored(item.name, item.data);
             item.streamed = true, item.flags = 8;
         })},
        {"SEC-59", withDocument([](RawItem& item) {
             item = oddlyDeflated(item.name, item.data);
             item.streamed = true, item.flags = 8, item.descriptorIsSigned = false;
         })},
        {"SEC-59", withDocument([](RawItem& item) {
             item = oddlyDeflated(item.name, item.data + "<!--PK\7\x08 PK\1\2-->");
             item.streamed = true, item.flags = 8;
         })},
        {"SEC-59", withDocument([](RawItem& item) { item.comment = "PK\3\4"; })},
        {"no SEC-59", withDocument([](RawItem& item) { item.comment = "PK"; })},
        {"SEC-59", withDocument([](RawItem& item) { item.localExtra.assign(32768, '\0'); })},
        {"SEC-59", makeZip(small, "PK\5\6")},
        {"M3.14", withDocument([](RawItem& item) { ++item.size; })},
        {"M3.14", withDocument([](RawItem& item) {
             item.changeLocal = [](RawItem& local) { local.versionNeeded = 45; };
         })},
        {"M3.14",
         withDocument([](RawItem& item) { item.changeLocal = [](RawItem& local) { local.flags = 0x800; }; })},
        {"M3.14 SEC-48", withDocument([](RawItem& item) { item.offset = 7; })},
        {"SEC-47", withDocument([](RawItem& item) { item.attributes = 0120777U << 16; })},
        {"SEC-47", withDocument([](RawItem& item) { item.attributes = 0104755U << 16; })},
        {"SEC-47", withDocument([](RawItem& item) { item.attributes = 0x10, item.versionMadeBy = 20; })},
        {"no SEC-47", withDocument([](RawItem& item) { item.attributes = 0100755U << 16; })},
        {"SEC-47",
         withDocument([](RawItem& item) { item.attributes = 0120777U << 16, item.versionMadeBy = 20; })},
        {"SEC-52", withDocument([](RawItem& item) { item.extra = pathField(item.name, "word/other.xml"); })},
        {"no SEC-52", withDocument([](RawItem& item) { item.extra = pathField(item.name, item.name); })},
        {"SEC-52", withDocument([](RawItem& item) { item.extra = pathField("old.xml", "old.xml"); })},
        {"SEC-52", withDocument([](RawItem& item) {
             item.localExtra = pathField(item.name, item.name).replace(2, 1, "\x7F");
         })},
        {"SEC-53", withDocument([](RawItem& item) {
             item.localExtra = field(0xA220, std::string("\x28\xA0\0\0", 4) + "hidden");
         })},
        {"SEC-53", withDocument([](RawItem& item) { item.extra = field(0xA220, "data"); })},
        {"no SEC-53", withDocument([](RawItem& item) {
             item.localExtra = field(0xA220, std::string("\x28\xA0\0\0\0\0\0", 7));
         })},
    });
}

TEST(Container, findsTwinsAndPieces) {
    const RawItem types = contentTypesWith(R"(<Default Extension="xml" ContentType="application/xml"/>)");
    const auto relationships =
        relationshipsWith(std::string(TO_DOCUMENT) + R"(<Relationship Id="a" Type="urn:a" Target="a.xml"/>)");
    const auto with = [&](std::vector<RawItem> items, bool infos = false) {
        std::vector<RawItem> base = itemsWith({types, relationships});
        base.insert(base.end(), items.begin(), items.end());
        return brokenRules(makeZip(base), infos ? inspection::OPC : inspection::OPC | inspection::SECURITY,
                           infos);
    };
    const RawItem first = stored("a.xml/[0].piece", "<a");
    const RawItem last = stored("a.xml/[1].last.piece", "/>");
    EXPECT_EQ(with({first, last}), noted("no M2.11, M2.15, M2.16"));
    EXPECT_EQ(with({last, first}, true), noted("S2.5"));
    EXPECT_EQ(with({first, last}, true), noted("no S2.5"));
    EXPECT_EQ(with({first, last, stored("a.xml", "<a/>")}), noted("M2.11"));
    EXPECT_EQ(with({stored("a.xml", "<a/>"), stored("a.xml", "<b/>")}), noted("M3.3"));
    EXPECT_EQ(with({stored("a.xml", "<a/>"), stored("c.xml", "<a/>")}), noted("SEC-33; no M3.3"));
    EXPECT_EQ(with({first, last, stored("A.XML/[1].last.piece", "/>")}), noted("M2.15"));
    RawItem firstWithHint = first, lastWithHint = last;
    firstWithHint.localExtra = lastWithHint.localExtra = field(0xA220, std::string("\x28\xA0\0\0", 4));
    EXPECT_EQ(with({firstWithHint, last}, true), noted("no S3.2"));
    EXPECT_EQ(with({first, lastWithHint}, true), noted("S3.2"));
    EXPECT_EQ(with({first, stored("a.xml/[2].last.piece", "/>")}), noted("M2.16"));
    EXPECT_EQ(brokenRules(makeZip({stored("[Content_Types].xml/[0].piece", types.data.substr(0, 9)),
                                   stored("[Content_Types].xml/[1].last.piece", types.data.substr(9))})),
              "");
}

TEST(Container, tellsWhatIsNoFault) {
    InspectionOptions options;
    for (const char* const rule : {"SEC-45", "SEC-51", "SEC-58", "O1.1", "S3.2"})
        options.only.emplace_back(rule);
    std::string ole2(1536, '\0');
    ole2.replace(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    ole2[30] = 9; // sectors of 512 bytes
    ole2[48] = 1; // the second one holds the directory
    const std::string stream = "EncryptedPackage";
    for (std::size_t i = 0; i < stream.size(); ++i)
        ole2[1024 + 2 * i] = stream[i];
    ole2[1024 + 64] = static_cast<char>(2 * stream.size() + 2);
    std::vector<RawItem> items = smallItems();
    items[1].comment = "a";
    items[2].localExtra = field(0xA220, std::string("\x28\xA0\0\0", 4));
    noteBroken("SEC-45 SEC-51 O1.1 SEC-58");
    noteClose("SEC-45 SEC-51 O1.1 SEC-58");
    EXPECT_EQ(findingsOf(makeZip({}), options), std::vector<std::string>());
    EXPECT_EQ(findingsOf(textOf(ole2.substr(0, 1024)), options), std::vector<std::string>());
    EXPECT_EQ(findingsOf(makeZip(smallItems()), options).size(), 1U); // who has written them
    EXPECT_EQ(
        findingsOf(textOf(ole2), options),
        std::vector<std::string>{"info SEC-45 : The document is encrypted: nothing in it can be checked"});
    EXPECT_EQ(
        findingsOf(makeZip(items, "abc"), options),
        (std::vector<std::string>{"info SEC-51 : The archive has a comment of 3 bytes",
                                  "info SEC-51 /_rels/.rels: The item has a comment of 1 bytes",
                                  "info O1.1 : 1 item has a growth hint",
                                  "info SEC-58 : The items were written on Unix, 2025-01-01T12:00:00"}));
}

TEST(Container, keepsToTheLimits) {
    using Limits = physical::ZipOptions;
    const Bytes package = packageWith();
    const Bytes bomb = withDocument([](RawItem& item) { item.method = 8, item.size = 100'000; });
    const auto broken = [](const Bytes& archive, const auto& change) {
        InspectionOptions options;
        change(options.limits);
        std::string lines;
        for (const std::string& line : findingsOf(archive, options))
            lines += line.substr(0, 13);
        return lines;
    };
    noteBroken("SEC-54");
    noteClose("SEC-54");
    EXPECT_EQ(broken(package, [](Limits&) {}), "");
    const std::initializer_list<void (*)(Limits&)> changes = {
        [](Limits& l) { l.maxItems = 2; },       [](Limits& l) { l.maxDirectorySize = 100; },
        [](Limits& l) { l.maxNameLength = 17; }, [](Limits& l) { l.maxDepth = 0; },
        [](Limits& l) { l.maxItemSize = 300; },  [](Limits& l) { l.maxTotalSize = 700; }};
    for (const auto& change : changes)
        EXPECT_EQ(broken(package, change).substr(0, 12), "error SEC-54") << (&change - changes.begin());
    EXPECT_EQ(broken(bomb, [](Limits& l) { l.maxRatio = 100, l.ratioFloor = 1000; }), "error SEC-54 ");
}

/// Small archives with one defect each.
TEST(Container, findsWhatTheStoreRefuses) {
    for (const auto& file : std::filesystem::directory_iterator(OPCMODEL_HOSTILE_ARCHIVES)) {
        const std::string name = file.path().filename().string();
        if (name == "two-content-types-streams-in-other-case.zip" || // [M3.10]
            name == "unused-17-MB.zip")                              // that much is a limit of the store
            continue;
        InspectionOptions options;
        for (const auto& [first, count] : {inspection::containerRules(), inspection::nameRules()})
            for (const inspection::Rule* rule = first; rule < first + count; ++rule)
                options.only.emplace_back(rule->id);
        const inspection::Report report = inspect(inspection::Archive(file.path()), options);
        EXPECT_GT(report.count(inspection::Severity::Error), 0U) << name;
    }
}

} // namespace
} // namespace opc::test
