#include "PhysicalSupport.hpp"
#include "RawZip.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

namespace {

using namespace opc::test;
using opc::model::Package;
using opc::model::PartName;
using opc::physical::LenientPackage;
using opc::physical::ZipPackage;

const char* const NO_TYPE = "no content type covers it";
const char* const NO_SOURCE = "a relationships part without a source";

const std::string TYPES =
    "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
    "<Default Extension='rels' ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
    "<Default Extension='XML' ContentType='text/xml'/>"
    "<Override PartName='/Named.bin' ContentType='a/b'/></Types>";
const std::string NO_RELATIONSHIPS =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'/>";

/// An archive of a sound part and of items with these names.
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
    const std::pair<std::vector<std::string>, std::vector<std::pair<std::string, std::string>>> cases[] = {
        {{"_rels/.rels", "_rels/a.xml.rels", "NAMED.BIN", "b.Xml"}, {}},
        {{".DS_Store", "image1.jpg", "noextension"},
         {{"/.DS_Store", NO_TYPE}, {"/image1.jpg", NO_TYPE}, {"/noextension", NO_TYPE}}},
        {{"word/_rels/comments.xml.rels"}, {{"/word/_rels/comments.xml.rels", NO_SOURCE}}},
        {{"image1.jpg", "_rels/image1.jpg.rels"},
         {{"/image1.jpg", NO_TYPE}, {"/_rels/image1.jpg.rels", NO_SOURCE}}},
        {{"_rels/A.XML.rels", "_rels/plain.xml"}, {}},
        {{"_rels/_rels/.rels.rels", "_rels/.rels"}, {{"/_rels/_rels/.rels.rels", NO_SOURCE}}},
    };
    for (const auto& [items, hidden] : cases) {
        const std::string label = items.front();
        ZipPackage store(archive(items));
        {
            Package strict(store);
            if (hidden.empty())
                strict.open(OpenMode::ReadOnly);
            else
                EXPECT_THROW(strict.open(OpenMode::ReadOnly), opc::Exception) << label;
        }
        LenientPackage lenient(store);
        Package package(lenient);
        package.open(OpenMode::ReadOnly);
        EXPECT_EQ(hiddenOf(lenient), hidden) << label;
        EXPECT_TRUE(package.hasPart(PartName(u"/a.xml"))) << label;
        EXPECT_EQ(lenient.getParts().size(), items.size() + 1 - hidden.size()) << label;
    }
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

TEST(LenientPackage, givesHiddenNamesToNewParts) {
    ZipPackage store(archive({"image1.jpg", "word/_rels/comments.xml.rels"}));
    LenientPackage lenient(store);
    Package package(lenient);
    package.open(OpenMode::ReadWrite);
    addPart(package, u"/IMAGE1.jpg", u"image/jpeg");
    addPart(package, u"/word/comments.xml");
    EXPECT_TRUE(lenient.hiddenItems().empty());
    EXPECT_EQ(lenient.getParts().size(), 3U);
    package.close(false);
    EXPECT_EQ(itemOf(readZip(store.bytes()), "image1.jpg").size, 0U);

    Package strict(store);
    strict.open(OpenMode::ReadOnly);
    EXPECT_TRUE(strict.getPart(PartName(u"/word/comments.xml")).getRelationships().empty())
        << "those that were left behind aren't its own";
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
    EXPECT_THROW(open(makeZip({stored("a.xml", "")})), opc::Exception);
    EXPECT_THROW(open(makeZip({stored("a.xml", ""), stored("[Content_Types].xml", "<Types")})),
                 opc::model::InvalidContentTypeStream);
    EXPECT_THROW(open(makeZip({stored("a.xml", ""), stored("[Content_Types].xml", "<!DOCTYPE a><Types/>")})),
                 opc::model::InvalidContentTypeStream);
}

TEST(LenientPackage, asksPartsForTheirTypesWhereThereIsNoStream) {
    opc::physical::MemoryPackage store(opc::physical::MemoryPackage::ContentTypes::InParts);
    store.open(OpenMode::CreateOnly);
    store.createPart(u"/a", u"a/b", PartInfo());
    store.createPart(u"/b", u"", PartInfo());
    store.close(false);
    LenientPackage lenient(store);
    lenient.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(lenient), u"/a ");
    EXPECT_EQ(hiddenOf(lenient), (decltype(hiddenOf(lenient)){{"/b", NO_TYPE}}));
}

} // namespace
