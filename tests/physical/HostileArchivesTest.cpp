#include "PhysicalSupport.hpp"
#include "support/Cases.hpp"

#include <cstdlib>
#include <ctime>
#include <map>
#include <set>

namespace {

using namespace opc::test;

/// @return the number of oddities
std::size_t readAll(const std::filesystem::path& path, bool lenient) {
    opc::physical::ZipOptions options;
    options.lenient = lenient;
    ZipPackage package(path, options);
    package.open(OpenMode::ReadOnly);
    rest(*package.getContentTypeInputStream());
    for (auto* part : package.getParts())
        content(*part);
    return package.getOddities().size();
}

/// A line of /proc/self/status, in KiB.
long memory(const std::string& line) {
    std::ifstream status("/proc/self/status");
    for (std::string text; std::getline(status, text);) {
        if (text.compare(0, line.size(), line) == 0)
            return std::strtol(text.c_str() + line.size(), nullptr, 10);
    }
    return 0;
}

#if defined(__SANITIZE_ADDRESS__) ||                                                                         \
    defined(_WIN32) // slower, and keeps freed memory for a while; there clock() is no CPU time
constexpr std::clock_t MOST_TIME = 1000;
constexpr long MOST_MEMORY = 512L * 1024L;
#else
constexpr std::clock_t MOST_TIME = 100;
constexpr long MOST_MEMORY = 64L * 1024L;
#endif

TEST(HostileArchives, areRefusedSoonAndWithoutSpendingMemory) {
    const std::map<std::string, int> codes = {
        {"damaged", EBADMSG}, {"unsupported", ENOTSUP}, {"too large", EFBIG}};
    std::map<std::string, std::string> leniently;
    forEachCase("zip/hostile-leniently.txt", [&](const std::string& archive, const std::string& message) {
        leniently[archive] = message;
    });
    const std::filesystem::path folder = OPCMODEL_HOSTILE_ARCHIVES;
    std::set<std::string> tested;
    const auto check = [&](const std::string& message, const std::string& kind, const std::string& archive) {
        const auto path = folder / (archive + ".zip");
        const int code = codes.at(kind);
        std::ofstream("/proc/self/clear_refs") << "5"; // resets the peak
        const long memoryBefore = memory("VmRSS:");
        const std::clock_t start = std::clock(); // CPU time, which other processes don't affect
        EXPECT_FAILS(code, path.string() + ": " + message, readAll(path, false));
        const std::string& otherwise = leniently.emplace(archive, message).first->second;
        if (otherwise.empty()) {
            EXPECT_EQ(readAll(path, true), 1U);
        } else {
            EXPECT_FAILS(code, path.string() + ": " + otherwise, readAll(path, true));
        }
        EXPECT_LT((std::clock() - start) * 1000 / CLOCKS_PER_SEC, MOST_TIME);
        EXPECT_LT(memory("VmHWM:") - memoryBefore, MOST_MEMORY);
        tested.insert(path.filename().string());
    };
    forEachCase("zip/hostile.txt", check);
    EXPECT_EQ(leniently.size(), tested.size()) << "each stands in both files";
    for (const auto& file : std::filesystem::directory_iterator(folder))
        EXPECT_EQ(tested.count(file.path().filename().string()), 1U) << file.path() << " isn't tested";
    EXPECT_GE(tested.size(), 40U);
}

} // namespace
