#include "support/OddPackage.hpp"
#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/editing/DifferenceJob.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <random>

namespace {

using namespace opc;
using namespace opc::editing;
using inspection::Archive;
using test::Bytes;
using test::RawItem;
using test::stored;

const std::string NAMESPACE = "http://schemas.openxmlformats.org/package/2006/";

/// Makes packages of a few names, Ids and contents, so that two of them often have something in common. They are the same
/// with each compiler: no expression picks twice.
class Packages {
public:
    explicit Packages(bool areOdd) : areOdd(areOdd) {}

    Bytes make() {
        if (areOdd && pick(4) == 0)
            return makeByModel();
        std::string types = "<Types xmlns=\"" + NAMESPACE +
                            "content-types\"><Default Extension=\"rels\" "
                            "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                            "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
        std::vector<RawItem> items{relationshipsOf("")};
        for (const std::string& name : names()) {
            if (pick(3) == 0)
                continue;
            items.push_back(stored(name, content()));
            if ((name.back() == 'n' && !isOdd()) || pick(2) == 0)
                types += "<Override PartName=\"/" + name + "\" ContentType=\"a/" + std::to_string(pick(2)) +
                         "\"/>";
            if (pick(2) == 0)
                items.push_back(relationshipsOf(name));
        }
        if (!isOdd())
            items.push_back(stored("[Content_Types].xml", types + "</Types>"));
        std::shuffle(items.begin(), items.end(), random);
        return test::makeZip(items);
    }

private:
    std::size_t pick(std::size_t count) { return random() % count; }
    bool isOdd() { return areOdd && pick(20) == 0; }

    std::vector<std::string> names() {
        std::vector<std::string> all{"a.xml", "b.bin", "x/c.xml", "x/D.xml", "x/y/e.bin", "%C3%A9.xml"};
        for (const char* odd : {"a.xml", "A.XML", "b c.xml", "x/*.xml", "[trash]/1", "p.xml/[0].last.piece",
                                "a.xml/d.xml", "x/%41.xml"})
            if (isOdd())
                all.emplace_back(odd);
        return all;
    }

    Bytes makeByModel() {
        std::vector<std::uint8_t> choices(200);
        std::generate(choices.begin(), choices.end(), [this] { return static_cast<std::uint8_t>(random()); });
        physical::ZipPackage store{Bytes()};
        EXPECT_EQ(test::findLossInOddPackage(store, choices.data(), choices.size()), "");
        return store.bytes();
    }

    /// The model creates no relationship of a part to itself.
    static bool leads(const std::string& target, const std::string& part) {
        return !part.empty() && target.compare(0, part.size() + 1, '/' + part) == 0;
    }

    std::string content() {
        if (pick(4) == 0)
            return "moves";
        std::string text(pick(3) == 0 ? 20'000 : pick(3), 'x');
        text += std::to_string(pick(3));
        return text.append(pick(2), '\xFF');
    }

    std::string target() {
        static const std::vector<std::string> TARGETS{
            "/a.xml",   "/none.xml#f",    "/b.bin",      "/x/c.xml?q=1", "http://x/", "mailto:a@b",
            "/x/c.xml", "../Chapter%201", "/%C3%A9.xml", "/x/D.xml",     "/x/y/e.bin"};
        static const std::vector<std::string> ODD{"#f",           "a:b",     "",       "b c.xml",
                                                  "/_rels/.rels", "/a.xml/", " a.xml "};
        return isOdd() ? ODD[pick(ODD.size())] : TARGETS[pick(TARGETS.size())];
    }

    RawItem relationshipsOf(const std::string& part) {
        std::string document = "<Relationships xmlns=\"" + NAMESPACE + "relationships\">";
        std::vector<std::string> ids{"rId1", "rId2", "x"};
        for (const char* odd : {"x", "1 2", ""})
            if (isOdd())
                ids.emplace_back(odd);
        for (const std::string& id : ids)
            if (const std::string to = target(); pick(2) == 0 && (areOdd || !leads(to, part))) {
                const bool isExternal = to[0] != '/' || pick(4) == 0;
                document += "<Relationship Id=\"" + id + "\" Type=\"urn:" + std::to_string(pick(2)) +
                            "\" Target=\"" + to;
                document += isExternal && !isOdd() ? "\" TargetMode=\"External\"/>" : "\"/>";
            }
        if (isOdd())
            document += "<more/>";
        const std::size_t file = part.rfind('/') + 1;
        return stored(part.substr(0, file) + "_rels/" + part.substr(file) + ".rels",
                      document + "</Relationships>");
    }

    const bool areOdd;
    std::mt19937 random{12};
};

Bytes applied(const Bytes& package, const Job& job, const JobFolder& folder) {
    physical::ZipOptions options;
    options.lenient = true;
    physical::ZipPackage archive(package, options);
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

class DifferenceJobs : public testing::TestWithParam<bool> {
protected:
    /// Makes a job, and follows it if it is complete.
    void lead(const Bytes& before, const Bytes& now) {
        const Archive old(before);
        const Archive wanted(now);
        JobContents kept(++pairs % 2 == 0 ? folder.path() / std::to_string(pairs) : std::filesystem::path());
        std::optional<DifferenceJob> made;
        try {
            made = makeJob(old, wanted, kept);
        } catch (const Exception& e) {
            EXPECT_THROW(applied(before, {}, {folder.path()}), Exception) << e.what();
            ++refused;
            return;
        }
        if (!made->left.empty()) {
            ++refused;
            return;
        }
        const std::string written = writeJob(made->job);
        const Archive result(applied(before, readJob(written), {folder.path()}));
        ASSERT_TRUE(compare(result, wanted).isEmpty()) << written;
        for (const Step& step : made->job.steps)
            moves += std::holds_alternative<MoveStep>(step) ? 1 : 0;
        steps += made->job.steps.size();
    }

    const test::TemporaryFolder folder;
    std::size_t pairs = 0, refused = 0, moves = 0, steps = 0;
};

TEST_P(DifferenceJobs, leadFromEachPackageToEachOtherOrSayThatTheyDont) {
    const bool areOdd = GetParam();
    Packages packages(areOdd);
    Bytes before = packages.make();
    while (pairs < 250 && !HasFailure()) {
        const Bytes now = packages.make();
        lead(before, now);
        before = now;
    }
    EXPECT_GT(steps, areOdd ? 200U : 1000U);
    EXPECT_GT(moves, areOdd ? 5U : 20U);
    EXPECT_EQ(refused > 50, areOdd) << refused;
    EXPECT_LT(refused, areOdd ? 220U : 1U);
}

INSTANTIATE_TEST_SUITE_P(OfPackages, DifferenceJobs, testing::Bool(),
                         [](const auto& one) { return one.param ? "Odd" : "Plain"; });

const RawItem CONTENT_TYPES =
    stored("[Content_Types].xml",
           "<Types xmlns=\"" + NAMESPACE +
               "content-types\"><Default Extension=\"xml\" ContentType=\"a/b\"/>"
               "<Default Extension=\"rels\" "
               "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/></Types>");

RawItem relationshipsTo(const std::string& name, const std::vector<std::string>& targets,
                        const std::string& more = {}) {
    std::string document = "<Relationships xmlns=\"" + NAMESPACE + "relationships\">";
    for (std::size_t i = 0; i < targets.size(); ++i)
        document +=
            "<Relationship Id=\"r" + std::to_string(i) + "\" Type=\"t:t\" Target=\"" + targets[i] + "\"/>";
    return stored(name, document + more + "</Relationships>");
}

/// Relationships follow a part that is renamed, so that only what else differs is left to do.
TEST(DifferenceJob, renamesPartsWithWhatLeadsToThem) {
    const Archive before(
        test::makeZip({CONTENT_TYPES, stored("a.xml", "moved"), stored("b.xml", "b"),
                       relationshipsTo("_rels/.rels", {"a.xml", "a.xml#f", "b.xml", "a.xml"}),
                       relationshipsTo("_rels/a.xml.rels", {"b.xml", "#own"})}));
    const Archive now(
        test::makeZip({CONTENT_TYPES, stored("x/c.xml", "moved"), stored("b.xml", "b"),
                       relationshipsTo("_rels/.rels", {"x/c.xml", "x/c.xml#f", "b.xml", "a.xml"}),
                       relationshipsTo("x/_rels/c.xml.rels", {"../b.xml", "#own"})}));
    JobContents contents;
    const DifferenceJob made = makeJob(before, now, contents);
    EXPECT_EQ(made.left, std::vector<std::string>());
    ASSERT_EQ(made.job.steps.size(), 2U) << writeJob(made.job);
    EXPECT_EQ(std::get<MoveStep>(made.job.steps[0]).name, "/x/c.xml");
    EXPECT_EQ(std::get<RetargetStep>(made.job.steps[1]).target, "/a.xml") << "it leads to nothing now";
    JobContents more;
    const DifferenceJob ofOne = makeJob(before, now, more, {{"/x/*"}, {}});
    EXPECT_EQ(std::get<AddStep>(ofOne.job.steps.at(0)).part, "/x/c.xml") << "/a.xml isn't asked for";
}

TEST(DifferenceJob, tellsWhatItLeaves) {
    const Archive before(test::makeZip(
        {CONTENT_TYPES, stored("a.xml", ""), relationshipsTo("_rels/gone.xml.rels", {"a.xml"})}));
    const Archive now(test::makeZip(
        {CONTENT_TYPES, stored("a.xml", ""), stored("a.bin", "1"), stored("[trash]/1", "1"),
         relationshipsTo("_rels/.rels", {"a:b"},
                         "<x/><Relationship Id='r1' Type='t:t' Target='a.xml'/><Relationship Id='r1' "
                         "Type='t:t' Target='b.xml'/><Relationship Id='1 2' Type='t:t' Target='a.xml'/>"),
         relationshipsTo("_rels/a.bin.rels", {"x"}), relationshipsTo("_rels/a.xml.rels", {"A.xml#f"})}));
    JobContents contents;
    const DifferenceJob made = makeJob(before, now, contents);
    EXPECT_EQ(made.left,
              (std::vector<std::string>{
                  "the part /_rels/.rels: it holds more than relationships",
                  "the part /a.bin: it has no content type",
                  "the relationship 1 2 of /: Relationship ID is not a valid xsd::ID",
                  "the relationship r0 of /: Relationship target cannot be an absolute URI for an internal "
                  "relationship",
                  "the relationship r1 of /: Relationship ID already exists",
                  "the relationship r0 of /a.bin: No part found with the name:/a.bin",
                  "the relationship r0 of /gone.xml: No part found with the name:/gone.xml",
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
    JobContents(path).keep(version(0));
    EXPECT_FALSE(std::filesystem::exists(path));
    {
        JobContents contents(path);
        EXPECT_EQ(contents.keep(version(1)).bytes, "small");
        EXPECT_FALSE(std::filesystem::exists(path));
        EXPECT_EQ(contents.keep(version(0)).from, "c/1");
        contents.stay();
    }
    EXPECT_EQ(std::filesystem::file_size(path / "1"), large.size());
    JobContents again(path);
    EXPECT_THROW(again.keep(version(0)), Exception);
    EXPECT_TRUE(std::filesystem::exists(path / "1"));
}

} // namespace
