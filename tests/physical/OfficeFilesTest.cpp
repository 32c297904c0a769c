#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <opc/core/Text.hpp>

namespace {

using namespace opc::test;

TEST(OfficeFiles, keepEveryItemButTheChangedOnes) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"letter.docx", 9}, {"budget.xlsx", 8}, {"talk.pptx", 37}, {"report.docx", 16}, {"table.xlsx", 9},
    };
    for (const auto& [file, parts] : cases) {
        const TemporaryFolder folder;
        const auto path = folder / file;
        std::filesystem::copy_file(std::filesystem::path(OPCMODEL_TEST_DATA) / "office" / file, path);
        const auto before = readZip(readFile(path));

        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        EXPECT_EQ(package.getParts().size(), parts) << file;
        EXPECT_TRUE(package.ignoredItems().empty()) << file;
        for (auto* part : package.getParts())
            EXPECT_EQ(content(*part).size(),
                      itemOf(before, opc::toASCIIString(part->getName()).substr(1)).size);
        const std::string types = rest(*package.getContentTypeInputStream());
        EXPECT_NE(types.find("<Types"), std::string::npos);
        create(package, u"/custom/note.txt", "added");
        putContentTypes(package, types);
        package.close(false);

        EXPECT_TRUE(othersAccept(path));
        const auto after = readZip(readFile(path));
        EXPECT_EQ(after.size(), before.size() + 1);
        for (const RawItem& item : before) {
            if (item.name == "[Content_Types].xml")
                continue;
            EXPECT_EQ(itemOf(after, item.name).data, item.data) << file << ": " << item.name;
        }
    }
}

} // namespace
