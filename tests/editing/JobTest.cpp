#include "support/PackageTest.hpp"
#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/editing/Job.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <fstream>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

const std::string BASE = "http://schemas.openxmlformats.org/package/2006/";
const std::string USUAL =
    "<Default Extension='rels' ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
    "<Default Extension='xml' ContentType='application/xml'/>";

std::string jobOf(const std::string& steps) {
    return R"({"opctool":{"job":1},"steps":[)" + steps + "]}";
}

TEST(Jobs, areReadAsTheyAreWritten) {
    const std::string text = jobOf(
        R"({"do":"fix","profile":"security","rules":["M1.1"],"noRules":["SEC-17"]},{"do":"fix","profile":"opc"},)"
        R"({"do":"add","part":"/a","type":"a/b","text":"é\u0001"},{"do":"put","part":"/a","base64":"AP8="},)"
        R"({"do":"put","part":"/a","from":"x/y"},{"do":"rm","part":"/**","incoming":true,"cascade":true},)"
        R"({"do":"rm","part":["/a","/b"]},{"do":"mv","part":"/a","name":"/b"},{"do":"retype","part":"/a","type":"a/b"},)"
        R"({"do":"relate","source":"/","type":"t:t","target":"x","external":true,"id":"i"},)"
        R"({"do":"relate","source":"/","type":"t:t","target":"x"},{"do":"unrelate","source":"/","id":"i"},)"
        R"({"do":"retarget","source":"/","id":"i","target":"x"},{"do":"gc"},)"
        R"({"do":"props","clear":true,"unset":["creator"],"set":{"title":"t"},)"
        R"("keywords":[{"text":"k"},{"text":"l","language":"en"}]},)"
        R"({"do":"props","kind":"custom","set":{"n":{"type":"i4","text":"5"}}},)"
        R"({"do":"clean","what":["core","thumbnails"]},)"
        R"({"do":"check","failOn":"warning","profile":"all"},{"do":"check","failOn":"error","profile":"opc"})");
    std::string written;
    for (const char character : writeJob(readJob(text)))
        if (character != '\n' && character != ' ')
            written += character;
    EXPECT_EQ(written, text);
}

TEST(Jobs, areRefusedWhereTheySayAnythingElse) {
    const std::pair<std::string, const char*> cases[] = {
        {"[", "The job isn't JSON: parse error at line 1, column 2: syntax error while parsing value - "
              "unexpected end "
              "of input; expected '[', '{', or a literal"},
        {"1", "The job: isn't an object"},
        {std::string(100000, '['), "The job is nested too deeply"},
        {R"({"opctool":{"job":2},"steps":[]})", "The job has another version than 1: 2"},
        {R"({"opctool":{"job":1},"steps":{}})", "The job: steps isn't a list"},
        {R"({"opctool":{"job":1},"steps":[],"more":1})", "The job: has an unknown member: more"},
        {jobOf("1"), "step 1: isn't an object"},
        {jobOf("{}"), "step 1: do is missing"},
        {jobOf(R"({"do":"gc"},{"do":"cg"})"), "step 2 (cg): there is no such step"},
        {jobOf(R"({"do":"gc","part":"/a"})"), "step 1 (gc): has an unknown member: part"},
        {jobOf(R"({"do":"mv","part":"/a"})"), "step 1 (mv): name is missing"},
        {jobOf(R"({"do":"mv","part":1,"name":""})"), "step 1 (mv): part isn't a text"},
        {jobOf(R"({"do":"put","part":"/a"})"), "step 1 (put): has not one content: text, base64 or from"},
        {jobOf(R"({"do":"put","part":"/a","text":"","from":"x"})"),
         "step 1 (put): has not one content: text, base64 or from"},
        {jobOf(R"({"do":"put","part":"/a","base64":"A"})"), "step 1 (put): base64 isn't Base64"},
        {jobOf(R"({"do":"put","part":"/a","from":""})"), "step 1 (put): from is empty"},
        {jobOf(R"({"do":"rm","part":["/a",1]})"), "step 1 (rm): part isn't a list of texts"},
        {jobOf(R"({"do":"rm","part":"/a","cascade":1})"), "step 1 (rm): cascade is neither true nor false"},
        {jobOf(R"({"do":"props","set":{"title":1}})"), "step 1 (props): set isn't an object of texts"},
        {jobOf(R"({"do":"props","unset":"title"})"), "step 1 (props): unset isn't a list of texts"},
        {jobOf(R"({"do":"props","kind":"x"})"), "step 1 (props): kind is none of core, custom and extended"},
        {jobOf(R"({"do":"props","kind":"custom","set":{"n":{"type":"i4"}}})"), "n: text is missing"},
        {jobOf(R"({"do":"clean","what":["all"]})"),
         "step 1 (clean): what has none of core, extended, custom and thumbnails: all"},
        {jobOf(R"({"do":"props","keywords":["k"]})"), "keywords: isn't an object"},
        {jobOf(R"({"do":"fix","rules":["M0"]})"), "step 1 (fix): rules has an unknown rule: M0"},
        {jobOf(R"({"do":"fix"},{"do":"gc"},{"do":"fix"})"),
         "step 3 (fix): it works on the archive, so that it must stand in front of all other steps"},
        {R"({"opctool":{"job":1},"steps":[],"steps":[]})", "The job: has the member steps twice"},
        {jobOf(R"(1,{"do":"rm","part":"/a","part":"/b"})"), "step 2: has the member part twice"},
        {jobOf(R"({"do":"gc"},{"do":"props","set":{"title":"a","title":"b"}})"),
         "step 2: has the member title twice"},
        {jobOf(R"({"do":"check","failOn":"x"})"),
         "step 1 (check): failOn is none of error, warning and info"},
        {jobOf(R"({"do":"check","profile":"x"})"),
         "step 1 (check): profile is none of opc, security, office and all"},
    };
    for (const auto& refused : cases)
        EXPECT_RAISES(InvalidJob, refused.second, readJob(refused.first));
}

class AppliedJobs : public PackageTest {
protected:
    AppliedJobs() : PackageTest({u"/a.xml", u"/b.xml"}) {
        std::filesystem::create_directory(folder.path() / "job");
        std::ofstream(folder.path() / "job" / "inside") << "from inside";
        std::ofstream(folder.path() / "outside") << "from outside";
        std::filesystem::create_symlink("../outside", folder.path() / "job" / "link");
        package.open(OpenMode::ReadWrite);
    }

    /// What fails, with its details.
    std::string apply(const std::string& steps, bool mayLeave = false) {
        Editor editor(package);
        const auto run = [&] { applyJob(editor, readJob(jobOf(steps)), {folder.path() / "job", mayLeave}); };
        const std::string outcome = outcomeOf(run);
        return outcome;
    }

    TemporaryFolder folder;
};

TEST_F(AppliedJobs, makeTheirStepsInOrder) {
    const std::string steps =
        R"({"do":"add","part":"/c.txt","type":"text/plain","text":"first"},{"do":"put","part":"/c.txt","base64":"AP8="},)"
        R"({"do":"relate","source":"/","type":"t:t","target":"/c.txt","id":"c"},{"do":"put","part":"/a.xml","from":"inside"},)"
        R"({"do":"mv","part":"/c.txt","name":"/d.txt"},{"do":"relate","source":"/d.txt","type":"t:t","target":"/a.xml"},)"
        R"({"do":"retype","part":"/d.txt","type":"t/d"},{"do":"gc"},)"
        R"({"do":"relate","source":"/a.xml","type":"t:t","target":"x","external":true},{"do":"unrelate","source":"/a.xml","id":"rId1"},)"
        R"({"do":"retarget","source":"/","id":"c","target":"/d.txt#f"},{"do":"check"})";
    EXPECT_EQ(apply(steps), "");
    EXPECT_EQ(package.getParts().size(), 2U) << "nothing leads to /b.xml";
    EXPECT_EQ(readAll(package.getPart(PartName(u"/a.xml"))), "from inside");
    const Part moved = package.getPart(PartName(u"/d.txt"));
    EXPECT_EQ(readAll(moved), std::string("\0\xFF", 2));
    EXPECT_EQ(moved.getContentType().toString(), u"t/d");
    EXPECT_EQ(package.getRelationshipByID(u"c").getTarget(), u"d.txt#f");
}

TEST_F(AppliedJobs, takeNoFileFromOutside) {
    const auto put = [](const std::string& from) {
        return R"({"do":"put","part":"/a.xml","from":")" + from + "\"}";
    };
    const std::string absolute = (folder.path() / "outside").string();
    for (const std::string& from : {std::string("../outside"), std::string("link"), absolute}) {
        EXPECT_EQ(apply(put(from)), "opc::Exception: " + from + " is outside the folder of the job");
        EXPECT_EQ(apply(put(from), true), "");
        EXPECT_EQ(readAll(package.getPart(PartName(u"/a.xml"))), "from outside");
        package.close(true);
        package.open(OpenMode::ReadWrite);
    }
    EXPECT_EQ(apply(put("none")), "opc::Exception: none can't be read");
    EXPECT_EQ(apply(put("inside\\u0000")), "opc::Exception: The name of a file has a NUL character");
    EXPECT_EQ(apply(put(".")), "opc::Exception: . isn't a regular file");
    EXPECT_EQ(apply(put("../job/inside")), "");
}

TEST_F(AppliedJobs, changeCorePropertiesAgainAndAgain) {
    Editor editor(package);
    const Job job =
        readJob(jobOf(R"({"do":"props","set":{"title":"first","created":"2024-02-29","keywords":"k"}},)"
                      R"({"do":"props","set":{"title":"second"},"unset":["keywords","version"]},)"
                      R"({"do":"props","set":{"title":"second"}})"));
    applyJob(editor, job, {"."});
    std::string told;
    for (const Change& change : editor.changes())
        told += describe(change) + "\n";
    EXPECT_EQ(told,
              R"(add relationship /#rId1 to metadata/coreProperties.xml, core-properties
add /metadata/coreProperties.xml, application/vnd.openxmlformats-package.core-properties+xml
change property created in /metadata/coreProperties.xml from nothing to "2024-02-29T00:00:00Z"
change property keywords in /metadata/coreProperties.xml from nothing to "k"
change property title in /metadata/coreProperties.xml from nothing to "first"
change property keywords in /metadata/coreProperties.xml from "k" to nothing
change property title in /metadata/coreProperties.xml from "first" to "second"
)");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(*PackageHelper::getCoreProperties(package).getTitle(), u"second");
    package.close(true);
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(apply(R"({"do":"props","set":{"subject":"s"},"unset":["no"]})"),
              "opc::Exception: no is no core property");
    EXPECT_EQ(apply(R"({"do":"props","set":{"modified":"soon"}})"), "opc::Exception: soon isn't a time");
    EXPECT_EQ(apply(R"({"do":"props","set":{"title":"again"}})"), "");
    EXPECT_NE(apply(R"({"do":"props","set":{"title":"\u0001"}})"), ""); // which changes nothing
    EXPECT_EQ(*PackageHelper::getCoreProperties(package).getTitle(), u"again");
    EXPECT_EQ(apply(R"({"do":"props","clear":true})"), "");
    EXPECT_TRUE(PackageHelper::getCoreProperties(package).isEmpty());
    const auto wrote = [](Editor& changed, const std::string& steps) {
        const std::size_t before = changed.changes().size();
        applyJob(changed, readJob(jobOf(steps)), {"."});
        return changed.changes().size() - before;
    };
    Editor again(package);
    again.setNow(std::chrono::system_clock::from_time_t(86400));
    const std::string steps =
        R"({"do":"props","set":{"modified":"now"},"keywords":[{"text":"k","language":"en"},{"text":"l"}]})";
    EXPECT_EQ(wrote(again, steps), 2U);
    EXPECT_EQ(again.changes().back().after.text, "1970-01-02T00:00:00Z");
    EXPECT_EQ(again.changes().front().after.text, "k [en]; l");
    EXPECT_EQ(wrote(again, steps), 0U) << "nothing differs: the document keeps its bytes";
}

TEST_F(AppliedJobs, setCustomPropertiesAndTakeMetadataOut) {
    EXPECT_EQ(apply(R"({"do":"props","kind":"custom","set":{"n":{"type":"i4","text":"5"},"m":"x"}})"), "");
    EXPECT_EQ(readProperties(package, PropertyKind::Custom).size(), 2U);
    EXPECT_NE(apply(R"({"do":"props","kind":"custom","set":{"n":{"type":"i4","text":"five"}}})"), "");
    EXPECT_EQ(apply(R"({"do":"props","set":{"title":"t"}},{"do":"clean","what":["custom"]})"), "");
    EXPECT_TRUE(readProperties(package, PropertyKind::Custom).empty());
    EXPECT_FALSE(PackageHelper::getCoreProperties(package).isEmpty());
}

TEST_F(AppliedJobs, nameTheStepThatFails) {
    Editor editor(package);
    const Job job = readJob(jobOf(R"({"do":"gc"},{"do":"mv","part":"/none","name":"/x"})"));
    EXPECT_EQ(detailsOf([&] { applyJob(editor, job, {"."}); }), "step 2 (mv)");
}

TEST(Mending, thatAJobAsksForComesBeforeItsOtherSteps) {
    const Bytes broken = makeZip(
        {stored("[Content_Types].xml", "<Types xmlns='" + BASE + "content-types'>" + USUAL + "</Types>"),
         stored("_rels/.rels", "<Relationships xmlns='" + BASE +
                                   "relationships'><Relationship Id='a' Type='t:t' Target='none.xml'/>"
                                   "<Relationship Id='b' Type='t:t' Target='a.xml'/></Relationships>"),
         stored("a.xml", "<a/>")});
    const Job job =
        readJob(jobOf(R"({"do":"fix","rules":["SEC-17"]},{"do":"unrelate","source":"/","id":"b"})"));
    ASSERT_TRUE(mends(job));
    const Mending mending = mendBefore(opc::inspection::Archive(broken), job);
    opc::inspection::ArchiveSource bytes(mending.archive);
    opc::physical::ZipPackage archive(bytes);
    Package mended(archive);
    mended.open(OpenMode::ReadWrite);
    Editor editor(mended, mending.signatures, mending.changes());
    applyJob(editor, job, {"."});
    EXPECT_TRUE(mended.getRelationships().empty());
    ASSERT_EQ(editor.changes().size(), 2U);
    EXPECT_EQ(describe(editor.changes()[0]), "remove relationship /#a to none.xml, t:t");
    Job late;
    late.steps = {CollectStep(), FixStep()};
    EXPECT_THROW(applyJob(editor, late, {"."}), opc::Exception);
    mended.close(true);
}

} // namespace
