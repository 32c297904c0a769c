#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/editing/DifferenceJob.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

using namespace opc;
using namespace opc::editing;
using inspection::Archive;
using test::Bytes;
using test::RawItem;
using test::stored;

const std::string NAMESPACE = "http://schemas.openxmlformats.org/package/2006/";

/// Makes packages of a few names, Ids and contents, so that two of them often have something in common.
class Packages {
public:
    Bytes make() {
        std::string types = "<Types xmlns=\"" + NAMESPACE +
                            "content-types\"><Default Extension=\"rels\" "
                            "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                            "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
        std::vector<RawItem> items{relationshipsOf("")};
        for (const std::string name : {"a.xml", "b.bin", "x/c.xml", "x/D.xml", "x/y/e.bin", "%C3%A9.xml"}) {
            if (pick(3) == 0)
                continue;
            items.push_back(stored(name, content()));
            if (name.back() == 'n' || pick(2) == 0)
                types += "<Override PartName=\"/" + name + "\" ContentType=\"a/" + std::to_string(pick(2)) +
                         "\"/>";
            if (pick(2) == 0)
                items.push_back(relationshipsOf(name));
        }
        items.push_back(stored("[Content_Types].xml", types + "</Types>"));
        std::shuffle(items.begin(), items.end(), random);
        return test::makeZip(items);
    }

private:
    std::size_t pick(std::size_t count) { return random() % count; }

    /// The model creates no relationship of a part to itself.
    static bool leads(const std::string& target, const std::string& part) {
        return !part.empty() && target.compare(0, part.size() + 1, '/' + part) == 0;
    }

    std::string content() {
        std::string text(pick(3) == 0 ? 20'000 : pick(3), 'x');
        return text + std::to_string(pick(3)) + std::string(pick(2), '\xFF');
    }

    RawItem relationshipsOf(const std::string& part) {
        static const std::vector<std::string> TARGETS{"/a.xml",       "/none.xml#f",    "/b.bin",
                                                      "/x/c.xml?q=1", "http://x/",      "mailto:a@b",
                                                      "/x/c.xml",     "../Chapter%201", "/%C3%A9.xml"};
        std::string document = "<Relationships xmlns=\"" + NAMESPACE + "relationships\">";
        for (const std::string id : {"rId1", "rId2", "x"})
            if (const std::string& target = TARGETS[pick(TARGETS.size())];
                pick(2) == 0 && !leads(target, part)) {
                const bool isExternal = target[0] != '/' || pick(4) == 0;
                document += "<Relationship Id=\"" + id + "\" Type=\"urn:" + std::to_string(pick(2)) +
                            "\" Target=\"" + target + "\"" +
                            (isExternal ? " TargetMode=\"External\"/>" : "/>");
            }
        const std::size_t file = part.rfind('/') + 1;
        return stored(part.substr(0, file) + "_rels/" + part.substr(file) + ".rels",
                      document + "</Relationships>");
    }

    std::mt19937 random{11};
};

Bytes applied(const Bytes& package, const Job& job, const JobFolder& folder) {
    physical::ZipPackage archive(package);
    {
        physical::LenientPackage lenient(archive);
        model::Package opened(lenient);
        opened.open(interfaces::OpenMode::ReadWrite);
        Editor editor(opened);
        applyJob(editor, job, folder);
        opened.close(false);
    }
    return archive.bytes();
}

TEST(DifferenceJob, leadsFromEachPackageToEachOther) {
    const test::TemporaryFolder folder;
    Packages packages;
    std::size_t differences = 0;
    Bytes before = packages.make();
    for (int i = 0; i < 150; ++i) {
        const Bytes now = packages.make();
        const Archive old(before);
        const Archive wanted(now);
        const inspection::Comparison comparison = compare(old, wanted, {{}, false});
        differences += comparison.parts.size() + comparison.relationships.size();
        const std::string contents = std::to_string(i);
        JobContents kept(i % 2 == 0 ? folder.path() / contents : std::filesystem::path(), contents);
        const DifferenceJob made = makeJob(comparison, kept);
        ASSERT_EQ(made.left, std::vector<std::string>());
        const std::string written = writeJob(made.job);
        const Archive result(applied(before, readJob(written), {folder.path()}));
        ASSERT_TRUE(compare(result, wanted).isEmpty()) << i << ' ' << written;
        before = now;
    }
    EXPECT_GT(differences, 1000U);
}

TEST(DifferenceJob, tellsWhatItLeaves) {
    const RawItem types =
        stored("[Content_Types].xml",
               "<Types xmlns=\"" + NAMESPACE +
                   "content-types\"><Default Extension=\"xml\" ContentType=\"a/b\"/>"
                   "<Default Extension=\"rels\" "
                   "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/></Types>");
    const auto relationships = [](const std::string& name, const std::string& target,
                                  const std::string& more = {}) {
        return stored(name, "<Relationships xmlns=\"" + NAMESPACE +
                                "relationships\"><Relationship Id=\"r\" Type=\"t\" Target=\"" + target +
                                "\"/>" + more + "</Relationships>");
    };
    const Archive before(
        test::makeZip({types, stored("a.xml", ""), relationships("_rels/gone.xml.rels", "a.xml")}));
    const Archive now(
        test::makeZip({types, stored("a.xml", ""), stored("a.bin", "1"), stored("[trash]/1", "1"),
                       relationships("_rels/.rels", "a:b", "<x/>"), relationships("_rels/a.bin.rels", "x"),
                       relationships("_rels/a.xml.rels", "A.xml#f")}));
    JobContents contents;
    const DifferenceJob made = makeJob(compare(before, now, {{}, false}), contents);
    EXPECT_TRUE(made.job.steps.empty());
    EXPECT_EQ(made.left,
              (std::vector<std::string>{"the part /_rels/.rels, which holds more than relationships",
                                        "the part /a.bin, which has no content type",
                                        "the relationship r of /, which leads to no part name",
                                        "the relationship r of /a.bin, which has no source",
                                        "the relationship r of /a.xml, which leads to its own source",
                                        "the relationship r of /gone.xml, which has no source",
                                        "the item [trash]/1, which is no part"}));
}

TEST(JobContents, goToANewFolderThatStaysIfTheJobDoes) {
    const test::TemporaryFolder folder;
    const std::string large(JobContents::LARGEST_IN_JOB + 1, 'a');
    const Archive archive(test::makeZip({stored("a", large), stored("b", "small")}));
    const auto version = [&archive](std::size_t item) {
        const inspection::ArchiveItem& one = archive.items()[item];
        return inspection::ContentVersion{&archive, {&one}, one.name, {}, one.central->size};
    };
    const std::filesystem::path path = folder.path() / "c";
    JobContents(path, "c").keep(version(0));
    EXPECT_FALSE(std::filesystem::exists(path));
    {
        JobContents contents(path, "c");
        EXPECT_EQ(contents.keep(version(1)).bytes, "small");
        EXPECT_FALSE(std::filesystem::exists(path));
        EXPECT_EQ(contents.keep(version(0)).from, "c/1");
        contents.stay();
    }
    EXPECT_EQ(std::filesystem::file_size(path / "1"), large.size());
    JobContents again(path, "c");
    EXPECT_THROW(again.keep(version(0)), Exception);
    EXPECT_TRUE(std::filesystem::exists(path / "1"));
}

} // namespace
