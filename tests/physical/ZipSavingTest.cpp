#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"
#include "zip/src/Failure.hpp"

#include <algorithm>
#include <chrono>
#include <functional>

namespace {

namespace fs = std::filesystem;

using namespace opc::test;
using opc::physical::zip::CHANGED_MEANWHILE;

class ZipSaving : public FileTest {};

TEST_F(ZipSaving, goesWhereTheFileWasOpened) {
    const fs::path before = fs::current_path();
    fs::current_path(folder / "");
    ZipPackage package(fs::path("a.zip"));
    fs::current_path(before);
    package.open(OpenMode::CreateOnly);
    create(package, u"/a", "content");
    package.close(false);
    EXPECT_TRUE(fs::exists(path));
    EXPECT_FALSE(fs::exists("a.zip"));
}

TEST_F(ZipSaving, refusesAnArchiveWhoseEndCouldBeFoundInAnItem) {
    ZipOptions options;
    options.deterministic = true;
    const auto save = [&options](std::size_t commentSize) {
        std::string endRecord(20, '\0');
        endRecord.replace(0, 4, "PK\5\6");
        endRecord += static_cast<char>(commentSize);
        endRecord += '\0';
        ZipPackage package(Bytes(), options);
        package.open(OpenMode::CreateOnly);
        create(package, u"/a", endRecord, PartInfo(CompressionType::None));
        package.close(false);
        return package.bytes();
    };
    const Bytes archive = save(0);
    const std::string begin = "PK\5\6";
    const auto content = std::search(archive.begin(), archive.end(), begin.begin(), begin.end());
    const auto behind = static_cast<std::size_t>(archive.end() - content) - 22;
    EXPECT_FAILS(EBADMSG, "looks like the end of the archive", save(behind));
    EXPECT_NO_THROW(save(behind - 1));
}

TEST_F(ZipSaving, doesNotOverwriteWhatOthersHaveChangedMeanwhile) {
    const Bytes old = makeZip({stored("a", "alpha")});
    const Bytes others = makeZip({stored("a", "ALPHA")}); // of the same size
    const std::function<void()> replaceIt = [&] {
        writeFile(folder / "new", others);
        fs::rename(folder / "new", path);
    };
    const std::function<void()> writeIntoIt = [&] {
        writeFile(path, others);
        fs::last_write_time(path, fs::file_time_type::clock::now() + std::chrono::seconds(2));
    };
    for (const auto& change : {replaceIt, writeIntoIt}) {
        writeFile(path, old);
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", "beta");
        change();
        for (int attempt = 0; attempt < 2; ++attempt)
            EXPECT_FAILS(CHANGED_MEANWHILE, "has been changed by another program", package.close(false));
        EXPECT_EQ(readFile(path), others);
        EXPECT_EQ(folder.count(), 1U);
        package.close(true);
    }
    writeFile(path, old);
    bool isTooLate = false;
    ZipOptions options;
    options.beforeReplacing = [&](const fs::path& /*written*/) {
        if (!isTooLate)
            replaceIt();
    };
    ZipPackage package(path, options);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "beta");
    EXPECT_FAILS(CHANGED_MEANWHILE, "has been changed by another program", package.close(false))
        << "at the last moment";
    isTooLate = true;
    fs::remove(path);
    package.close(false);
    package.open(OpenMode::CreateOnly);
    replaceIt();
    package.close(false);
    EXPECT_EQ(readFile(path).size(), 22U) << "a new package replaces whatever there is";
}

TEST_F(ZipSaving, survivesThatOthersWriteIntoTheArchive) {
    std::vector<RawItem> items; // with a longer directory than is read ahead
    for (int i = 0; i < 1000; ++i)
        items.push_back(stored("item" + std::to_string(i), "alpha"));
    const Bytes old = makeZip(items);
    writeFile(path, old);
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "beta");
    writeFile(path, Bytes(old.size(), 0xFF));
    EXPECT_FAILS(CHANGED_MEANWHILE, "has been changed by another program", package.close(false));
    package.close(true);
    EXPECT_EQ(folder.count(), 1U);
}

TEST_F(ZipSaving, reportsAFolderInWhichNothingCanBeMade) {
    fs::create_directory(folder / "gone");
    ZipPackage package(folder / "gone/a.zip");
    package.open(OpenMode::CreateOnly);
    create(package, u"/a", "alpha");
    fs::remove(folder / "gone");
    EXPECT_FAILS(ENOENT, "a.zip: can't make a file in its folder", package.close(false));
    fs::create_directory(folder / "gone");
    package.close(false);
    EXPECT_TRUE(othersAccept(folder / "gone/a.zip"));
}

} // namespace
