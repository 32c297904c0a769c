#include "PhysicalSupport.hpp"
#include "RawZip.hpp"

#include <opc/physical/ZipPackage.hpp>

#include <sys/types.h>

// The test program is linked so that these stand before the system's own (see CMakeLists.txt).
namespace {

/// Calls that are still let through before one fails; negative: all are.
int callsBeforeFailure = -1;

bool failsNow() {
    if (callsBeforeFailure < 0 || callsBeforeFailure-- > 0)
        return false;
    errno = EIO;
    return true;
}

} // namespace

extern "C" {
ssize_t __real_pwrite(int file, const void* buffer, size_t count, off_t offset);
int __real_fchmod(int file, mode_t mode);
int __real_fsync(int file);
int __real_rename(const char* from, const char* to);

ssize_t __wrap_pwrite(int file, const void* buffer, size_t count, off_t offset) {
    return failsNow() ? -1 : __real_pwrite(file, buffer, count, offset);
}

int __wrap_fchmod(int file, mode_t mode) {
    return failsNow() ? -1 : __real_fchmod(file, mode);
}

int __wrap_fsync(int file) {
    return failsNow() ? -1 : __real_fsync(file);
}

int __wrap_rename(const char* from, const char* to) {
    return failsNow() ? -1 : __real_rename(from, to);
}
}

namespace {

using namespace opc::test;
using opc::physical::ZipPackage;

class ZipSystemFailure : public FileTest {};

TEST_F(ZipSystemFailure, ofAnyCallLeavesAWholeFileAndCanBeRepeated) {
    const Bytes old = makeZip({stored("a", std::string(600000, 'a'))});
    int failures = 0;
    for (int calls = 0;; ++calls) {
        writeFile(path, old);
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", "beta");
        callsBeforeFailure = calls;
        try {
            package.close(false);
            callsBeforeFailure = -1;
            break;
        } catch (const opc::Exception& failure) {
            callsBeforeFailure = -1;
            ++failures;
            EXPECT_EQ(failure.code().value(), EIO) << failure.what();
            // Once the new file stands in its place, the folder alone can still fail.
            const bool replaced =
                std::string(failure.what()) == path.string() + ": can't sync its folder: Input/output error";
            EXPECT_EQ(readFile(path) == old, !replaced) << failure.what();
            EXPECT_EQ(folder.count(), 1U) << failure.what();
        }
        EXPECT_EQ(content(*find(package, u"/a")).size(), 600000U);
        package.close(false);
        EXPECT_EQ(readZip(readFile(path)).size(), 2U);
    }
    EXPECT_GE(failures, 5) << "writes, permissions, sync, rename, sync of the folder";
}

} // namespace
