#include "inspection/Mendable.hpp"
#include "support/Outcome.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/editing/Mending.hpp>
#include <opc/editing/Repacking.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace opc::test {
namespace {

namespace fs = std::filesystem;
using inspection::Archive;

const std::string DANGLING = "<Relationship Id='gone' Type='urn:a' Target='gone.xml'/>";

/// What another program does to the file between, and what has to stay there; empty: what was made.
struct Meanwhile {
    const char* what;
    std::function<void(const fs::path& file)> run;
    Bytes stays;
};

void save(const fs::path& file, const Bytes& bytes) {
    const fs::path temporary = file.parent_path() / "other";
    writeFile(temporary, bytes);
    fs::rename(temporary, file);
}

TEST(Writing, losesNothingThatOthersSaveMeanwhile) {
    const Bytes old = packageWith({relationshipsWith(TO_DOCUMENT + DANGLING)});
    Bytes ofTheSameSize = old;
    ofTheSameSize.back() = 1;
    const Bytes others = packageWith();
    const auto later = fs::file_time_type::clock::now() + std::chrono::seconds(2);
    const Meanwhile cases[] = {
        {"nothing", [](const fs::path&) {}, {}},
        {"saves another", [&](const fs::path& file) { save(file, others); }, others},
        {"saves the same again", [&](const fs::path& file) { save(file, old); }, old},
        {"writes into it", [&](const fs::path& file) { writeFile(file, others); }, others},
        {"changes a byte",
         [&](const fs::path& file) {
             writeFile(file, ofTheSameSize);
             fs::last_write_time(file, later);
         },
         ofTheSameSize},
        {"removes it", [](const fs::path& file) { fs::remove(file); }, {}},
    };
    const std::function<void(const fs::path&, const std::function<void()>&)> ways[] = {
        [](const fs::path& file, const std::function<void()>& between) {
            const editing::Mending mending = editing::mend(Archive(file));
            between();
            editing::writeBack(file, mending.archive, mending.original);
        },
        [](const fs::path& file, const std::function<void()>& between) {
            const Archive package(file);
            const editing::Repacked repacked = editing::repack(package);
            between();
            editing::writeBack(file, repacked.archive, package.fileState());
        },
    };
    for (const Meanwhile& meanwhile : cases)
        for (const auto& way : ways) {
            const TemporaryFolder folder;
            const fs::path file = folder / "a.zip";
            writeFile(file, old);
            const std::string outcome = outcomeOf([&] { way(file, [&] { meanwhile.run(file); }); });
            const bool isRefused = !meanwhile.stays.empty();
            EXPECT_EQ(outcome, isRefused ? "opc::model::PackageCloseFailed: " + file.string() +
                                               ": has been changed by another program since it was opened"
                                         : "")
                << meanwhile.what;
            EXPECT_EQ(folder.count(), 1U) << meanwhile.what;
            EXPECT_TRUE(isRefused ? readFile(file) == meanwhile.stays : readFile(file) != old)
                << meanwhile.what;
        }
}

} // namespace
} // namespace opc::test
