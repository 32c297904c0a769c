#include "PhysicalSupport.hpp"
#include "support/Cases.hpp"
#include "support/PackageTest.hpp"
#include "support/RawZip.hpp"
#include "support/Texts.hpp"

#include <opc/physical/LenientPackage.hpp>

namespace {

using namespace opc::test;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;

const char* const NO_TYPE = "no content type covers it";
const char* const NO_SOURCE = "a relationships part without a source";

const std::string TYPES =
    "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
    "<Default Extension='rels' ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
    "<Default Extension='XML' ContentType='text/xml'/>"
    "<Override PartName='/Named.bin' ContentType='a/b'/></Types>";
const std::string NO_RELATIONSHIPS =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'/>";

/// An archive with a valid part and with items of these names.
Bytes archive(const std::vector<std::string>& names) {
    std::vector<RawItem> items = {stored("[Content_Types].xml", TYPES), stored("a.xml", "<a/>")};
    for (const std::string& name : names)
        items.push_back(
            oddlyDeflated(name, name.find(".rels") != std::string::npos ? NO_RELATIONSHIPS : "other"));
    return makeZip(items);
}

std::vector<std::pair<std::string, std::string>> hiddenOf(const LenientPackage& package) {
    std::vector<std::pair<std::string, std::string>> list;
    for (const auto& item : package.hiddenItems())
        list.emplace_back(opc::toUDEString(item.name), item.reason);
    return list;
}

void addPart(Package& package, const char16_t* name, const char16_t* type = u"text/xml") {
    package.createPart(PartName(name), opc::model::ContentType(type), opc::model::StandardPartInfo());
}

TEST(LenientPackage, hidesWhatTheModelRefusesAndNothingElse) {
    const auto check = [](const std::string& items, const std::string& uncovered,
                          const std::string& withoutSource) {
        ZipPackage store(archive(words(items)));
        std::vector<std::pair<std::string, std::string>> hidden;
        for (const std::string& name : words(uncovered))
            hidden.emplace_back(name, NO_TYPE);
        for (const std::string& name : words(withoutSource))
            hidden.emplace_back(name, NO_SOURCE);
        {
            Package strict(store);
            const std::string refusal = outcomeOf([&] { strict.open(OpenMode::ReadOnly); });
            EXPECT_EQ(refusal.empty(), hidden.empty()) << refusal;
        }
        LenientPackage lenient(store);
        Package package(lenient);
        package.open(OpenMode::ReadOnly);
        EXPECT_EQ(hiddenOf(lenient), hidden);
        EXPECT_TRUE(package.hasPart(PartName(u"/a.xml")));
        EXPECT_EQ(lenient.getParts().size(), words(items).size() + 1 - hidden.size());
    };
    forEachCase("lenient/hidden.txt", check);
}

TEST(LenientPackage, carriesWhatItHidesThroughASave) {
    const Bytes before = archive({"image1.jpg", "word/_rels/comments.xml.rels", ".DS_Store"});
    ZipPackage store(before);
    LenientPackage lenient(store);
    Package package(lenient);
    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/a.xml"));
    addPart(package, u"/b.xml");
    package.close(false);

    const auto after = readZip(store.bytes());
    EXPECT_EQ(after.size(), 5U);
    for (const char* name : {"image1.jpg", "word/_rels/comments.xml.rels", ".DS_Store"})
        EXPECT_EQ(itemOf(after, name).data, itemOf(readZip(before), name).data) << name;
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(lenient.hiddenItems().size(), 3U);
}

TEST(LenientPackage, replacesNothingThatItHides) {
    const Bytes before = archive({"image1.jpg", "word/_rels/comments.xml.rels"});
    ZipPackage store(before);
    LenientPackage lenient(store);
    Package package(lenient);
    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(opc::model::PartCreateFailed,
                  "/IMAGE1.jpg: what is hidden under this name would be replaced",
                  addPart(package, u"/IMAGE1.jpg", u"image/jpeg"));
    EXPECT_RAISES(
        opc::model::PartCreateFailed,
        "/Word/_rels/comments.xml.rels: this hidden relationships part would become that of the new part",
        addPart(package, u"/Word/comments.xml"));
    package.close(false);
    EXPECT_EQ(store.bytes(), before);
}

/// The relationships of a source that the model sees through a lenient package, each as "ID target".
std::vector<std::string> relationshipsOf(const opc::model::RelationshipSource& source) {
    std::vector<std::string> list;
    for (const auto& relationship : source.getRelationships())
        list.push_back(opc::toUDEString(relationship.getID() + u" " + relationship.getTarget()));
    return list;
}

TEST(LenientPackage, readsRelationshipsThatNoContentTypeCovers) {
    const std::string types = "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
                              "<Default Extension='xml' ContentType='text/xml'/></Types>";
    const std::string relationships =
        "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
        "<Relationship Id='a' Type='urn:t' Target='a.xml'/></Relationships>";
    ZipPackage store(makeZip({stored("[Content_Types].xml", types), stored("a.xml", ""),
                              stored("_rels/.rels", relationships), stored("_rels/a.xml.rels", relationships),
                              stored("_rels/none.xml.rels", relationships), stored("x.rels", "?")}));
    const std::vector<std::pair<std::string, std::string>> hidden = {{"/_rels/none.xml.rels", NO_SOURCE},
                                                                     {"/x.rels", NO_TYPE}};
    LenientPackage lenient(store);
    Package package(lenient);
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(hiddenOf(lenient), hidden);
    EXPECT_EQ(relationshipsOf(package.getPart(PartName(u"/a.xml"))), std::vector<std::string>{"a a.xml"});
    std::string said;
    for (const auto& oddity : lenient.getOddities())
        said += opc::toUDEString(oddity.place) + ": " + oddity.done + "\n";
    EXPECT_EQ(said, "/_rels/none.xml.rels: hidden, and kept in the file\n"
                    "/x.rels: hidden, and kept in the file\n"
                    "/_rels/.rels: read as a relationships part\n"
                    "/_rels/a.xml.rels: read as a relationships part\n");
    package.createExternalRelationship(u"urn:t", u"u:v", u"b");
    package.close(false);
    EXPECT_EQ(itemOf(readZip(store.bytes()), "[Content_Types].xml").data, types) << "it needn't change";

    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(relationshipsOf(package), (std::vector<std::string>{"a a.xml", "b u:v"}));
    addPart(package, u"/b.xml");
    addPart(package, u"/c.bin");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(relationshipsOf(package), (std::vector<std::string>{"a a.xml", "b u:v"}));
    EXPECT_EQ(itemOf(readZip(store.bytes()), "_rels/none.xml.rels").data, relationships);
    EXPECT_EQ(itemOf(readZip(store.bytes()), "x.rels").data, "?");
}

TEST(LenientPackage, leavesItToTheModelToRefuseTheRest) {
    const auto open = [](const Bytes& bytes) {
        ZipPackage store(bytes);
        LenientPackage lenient(store);
        Package package(lenient);
        package.open(OpenMode::ReadOnly);
    };
    EXPECT_THROW(open({}), opc::model::PackageNotFound);
    EXPECT_THROW(open({'x'}), opc::model::PackageOpenFailed);
    EXPECT_RAISES(opc::Exception,
                  "archive in memory: [Content_Types].xml: doesn't exist; the archive is no package",
                  open(makeZip({stored("a.xml", "")})));
    EXPECT_THROW(open(makeZip({stored("a.xml", ""), stored("[Content_Types].xml", "<Types")})),
                 opc::model::InvalidContentTypeStream);
}

TEST(LenientPackage, asksPartsForTheirTypesWhereThereIsNoStream) {
    opc::physical::MemoryPackage store(opc::physical::MemoryPackage::ContentTypes::InParts);
    store.open(OpenMode::CreateOnly);
    store.createPart(u"/a", u"a/b", PartInfo());
    store.createPart(u"/b", u"", PartInfo());
    put(*store.createPart(u"/_rels/.rels", u"", PartInfo())->getOutputStream(), NO_RELATIONSHIPS);
    store.close(false);
    LenientPackage lenient(store);
    Package package(lenient);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(lenient), u"/a /_rels/.rels ");
    EXPECT_EQ(hiddenOf(lenient), (decltype(hiddenOf(lenient)){{"/b", NO_TYPE}}));
}

} // namespace
