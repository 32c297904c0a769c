#include "PhysicalSupport.hpp"
#include "SystemCalls.hpp"
#include "support/RawZip.hpp"

namespace {

using namespace opc::test;

class ZipSystemFailure : public FileTest {};

TEST_F(ZipSystemFailure, ofAnyCallLeavesAWholeFileAndCanBeRepeated) {
    const Bytes old = makeZip({stored("a", std::string(600000, 'a'))});
    int failures = 0;
    for (int calls = 0;; ++calls) {
        writeFile(path, old);
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", "beta");
        SystemCalls::before = [left = calls](const std::string& call, int) mutable {
            const bool mayFail = call != "flock" && call != "fchown"; // failures of these don't stop a save
            return mayFail && left-- == 0 ? EIO : 0;
        };
        try {
            package.close(false);
            SystemCalls::before = nullptr;
            break;
        } catch (const opc::Exception& failure) {
            SystemCalls::before = nullptr;
            ++failures;
            EXPECT_EQ(failure.code().value(), EIO) << failure.what();
            // After the new file has replaced the old one, only the folder can still fail.
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
