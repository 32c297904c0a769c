#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <windows.h>

namespace {

namespace fs = std::filesystem;

using namespace opc::test;

class WindowsSaving : public FileTest {
protected:
    /// Opens an existing file as another program does.
    HANDLE hold(const fs::path& file, DWORD access, DWORD shared) {
        return ::CreateFileW(file.c_str(), access, shared, nullptr, OPEN_EXISTING, 0, nullptr);
    }
};

TEST_F(WindowsSaving, takesNamesInUnicode) {
    const fs::path archive = folder.path() / L"\u00E9\u20AC\U00010348.zip";
    {
        ZipPackage package(archive);
        package.open(OpenMode::CreateOnly);
        create(package, u"/a", "alpha");
        package.close(false);
    }
    EXPECT_NE(::GetFileAttributesW(archive.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(folder.count(), 1U);
    ZipPackage package(fs::u8path(archive.u8string()));
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(content(*find(package, u"/a")), "alpha");
}

TEST_F(WindowsSaving, removesWhatADeadProcessHasLeftButNotWhatALivingOneHolds) {
    writeFile(path, makeZip({stored("a", "alpha")}));
    const fs::path temporary = folder / ".a.zip.opcmodel-new";
    writeFile(temporary, Bytes(100, 'x'));
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "beta");
    const HANDLE other = hold(temporary, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_FAILS(EBUSY, "a.zip: is being saved by another process", package.close(false));
    EXPECT_TRUE(fs::exists(temporary));
    ::CloseHandle(other);
    package.close(false);
    EXPECT_EQ(folder.count(), 1U);
    EXPECT_EQ(readZip(readFile(path)).size(), 2U);
}

TEST_F(WindowsSaving, leavesTheOldFileIfAnotherProgramKeepsIt) {
    const Bytes old = makeZip({stored("a", "alpha")});
    writeFile(path, old);
    ZipPackage package(path);
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", "beta");
    const HANDLE other = hold(path, GENERIC_READ, FILE_SHARE_READ);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_THROW(package.close(false), opc::Exception);
    ::CloseHandle(other);
    EXPECT_EQ(readFile(path), old);
    EXPECT_FALSE(fs::exists(folder / ".a.zip.opcmodel-new"));
    package.close(false);
    EXPECT_EQ(readZip(readFile(path)).size(), 2U);
}

TEST_F(WindowsSaving, putsLargePartsIntoAFileThatGoesWithThePackage) {
    ZipOptions options;
    options.memoryForWrittenParts = 0;
    {
        ZipPackage package(path, options);
        package.open(OpenMode::CreateOnly);
        create(package, u"/a", noise(3U << 20));
        EXPECT_EQ(folder.count(), 1U) << "the temporary one";
        package.close(false);
    }
    EXPECT_EQ(folder.count(), 1U) << "the archive";
    ZipPackage package(path);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(content(*find(package, u"/a")), noise(3U << 20));
}

} // namespace
