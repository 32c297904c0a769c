#include "reports/picture/PackageGraph.hpp"

#include <opc/inspection/Reports.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace opc::inspection {
namespace {

constexpr Rule NAMES{"T1", "Odd <names>", Severity::Error, OPC, "M1.6", "A name isn't odd", "Typing",
                     "",   "Some fail",   "Mend it"};
constexpr Rule SIZES{"T2", "Sizes", Severity::Info, OPC, "", "Sizes are told", "x", "", "x", "x"};

Finding finding(Place place, std::string message = "is wrong", const Rule& rule = NAMES) {
    return {&rule, rule.severity, std::move(place), std::move(message), {}};
}

Place placeOf(std::string part, std::string relationship = {}, std::string target = {}) {
    Place place;
    place.part = std::move(part);
    place.relationship = std::move(relationship);
    place.target = std::move(target);
    return place;
}

std::string write(std::unique_ptr<ReportFormat> format, const std::vector<InspectedFile>& files) {
    std::ostringstream output;
    ReportWriter writer(output, std::move(format));
    for (const InspectedFile& file : files)
        writer.add(file);
    writer.end();
    return output.str();
}

InspectedFile fileOf(std::string name, std::vector<Finding> findings) {
    InspectedFile file;
    file.name = std::move(name);
    file.report.findings = std::move(findings);
    return file;
}

TEST(TextReport, tellsThePlaceOfEachFindingOnOneLine) {
    Place inLine = placeOf("/word/document.xml", "rId1");
    inLine.line = 3;
    inLine.column = 14;
    Place item;
    item.item = "word/";
    Place offset;
    offset.offset = 12;
    const struct {
        Place place;
        const char* line;
    } cases[] = {
        {{}, "ERROR(T1): a.docx: is wrong\n"},
        {placeOf("/"), "ERROR(T1): a.docx!/: is wrong\n"},
        {inLine, "ERROR(T1): a.docx!/word/document.xml(3,14)#rId1: is wrong\n"},
        {item, "ERROR(T1): a.docx!word/: is wrong\n"},
        {offset, "ERROR(T1): a.docx@12: is wrong\n"},
        {placeOf("/a\n\x1b[31m\xE2\x80\xAE"), "ERROR(T1): a.docx!/a  [31m : is wrong\n"},
    };
    for (const auto& [place, line] : cases)
        EXPECT_EQ(write(makeTextReport(), {fileOf("a.docx", {finding(place)})}),
                  line + std::string("1 file: 1 error, 0 warnings, 0 infos\n"));
}

TEST(Reports, leaveOutWhatABaselineKnows) {
    InspectedFile file = fileOf("a", {finding(placeOf("/a")), finding(placeOf("/b"))});
    Baseline baseline;
    baseline.add("a", fingerprints(file.report)[0]);
    baseline.add("b", fingerprints(file.report)[1]);
    file.known = baseline.findKnown("a", file.report);
    EXPECT_EQ(write(makeTextReport(), {file}),
              "ERROR(T1): a!/b: is wrong\n1 file: 1 error, 0 warnings, 0 infos; 1 known\n");
    EXPECT_NE(write(makeSARIFReport({}), {file}).find(R"("baselineState":"unchanged")"), std::string::npos);
    EXPECT_EQ(write(makeHTMLReport(), {file}).find("/a<"), std::string::npos);
}

TEST(Reports, countWhatIsNotListed) {
    InspectedFile file = fileOf("a", {finding({}, "", SIZES), finding({})});
    const std::string text = write(makeTextReport(), {file});
    EXPECT_LT(text.find("ERROR"), text.find("INFO")); // the worst first
    file.report.unlisted = {{"T1", 7}, {"other", 9}};
    ReportSummary summary;
    summary.add(file);
    EXPECT_EQ(summary.count(Severity::Error), 8U);
    EXPECT_EQ(summary.rules().at(&NAMES).findings, 8U);
    EXPECT_EQ(summary.count(Severity::Info), 1U);
}

TEST(Reports, separateOnlyFilesThatWriteSomething) {
    const std::vector<InspectedFile> files{fileOf("a", {}), fileOf("b", {finding({})}), fileOf("c", {}),
                                           fileOf("d", {finding({})})};
    const std::string sarif = write(makeSARIFReport({}), files);
    EXPECT_EQ(sarif.find("[,"), std::string::npos);
    EXPECT_EQ(sarif.find(",]"), std::string::npos);
    EXPECT_EQ(sarif.find("}{"), std::string::npos);
}

TEST(JSONReport, escapesAndGivesNullForWhatIsUnknown) {
    EXPECT_EQ(
        write(makeJSONReport(),
              {fileOf("a\"\xFF", {finding(placeOf("/"), "\\ \n\xE2\x80\xAE\xC3\xA9", SIZES)})}),
        R"([{"file":"a\")"
        "\xEF\xBF\xBD"
        R"(","failure":null,"format":null,"findings":[{"rule":"T2","severity":"info",)"
        R"("standard":null,"part":"/","item":null,"relationship":null,"target":null,"line":null,"column":null,)"
        R"("offset":null,"message":"\\ \u000a\u202e)"
        "\xC3\xA9"
        R"(","hint":null,"fingerprint":")" +
            fingerprints(fileOf("", {finding(placeOf("/"), "", SIZES)}).report)[0] +
            "\",\"known\":false}],\"unlisted\":{}}\n]\n");
}

TEST(HTMLReport, letsNothingOfAPackageBecomeMarkup) {
    const std::string evil = "<script>\"'&";
    InspectedFile file = fileOf(evil, {finding(placeOf(evil, evil), evil)});
    file.report.findings[0].hint = file.report.format = evil;
    InspectedFile failed;
    failed.name = failed.failure = evil;
    const std::string page = write(makeHTMLReport(), {file, failed});
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_EQ(page.find("<names>"), std::string::npos);
}

TEST(Fingerprints, standForTheFaultAndNotForItsWording) {
    const auto print = [](Place place, const Rule& rule = NAMES) {
        return fingerprints(fileOf("", {finding(std::move(place), "", rule)}).report)[0];
    };
    Place moved = placeOf("/a", "r", "t");
    moved.line = 7;
    moved.offset = 7;
    EXPECT_EQ(fingerprints(fileOf("x", {finding(moved, "other words")}).report)[0],
              print(placeOf("/a", "r", "t")));
    Place item;
    item.item = "/a";
    std::set<std::string> all{print(placeOf("/a")),
                              print(placeOf("/a", "r")),
                              print(placeOf("/a", "r", "t")),
                              print(placeOf("/a", "", "r")),
                              print(placeOf("/ar")),
                              print(item),
                              print(placeOf("/a", "r"), SIZES)};
    for (const std::string& twice :
         fingerprints(fileOf("", {finding(placeOf("/b")), finding(placeOf("/b"))}).report))
        all.insert(twice);
    EXPECT_EQ(all.size(), 9U);
}

TEST(SARIFReport, namesFilesByURIs) {
    const struct {
        const char* file;
        const char* root;
        const char* uri;
    } cases[] = {
        {"a b.docx", "", "a%20b.docx"},
        {"./x/../\xC3\xA9%.docx", "", "%C3%A9%25.docx"},
        {"/r/s/a.docx", "", "file:///r/s/a.docx"},
        {"/r/s/a.docx", "/r", "s/a.docx"},
        {"/r/s/a.docx", "/r/", "s/a.docx"},
        {"/r2/a.docx", "/r", "file:///r2/a.docx"},
        {"/r/../x", "/r", "file:///x"},
    };
    for (const auto& [file, root, uri] : cases)
        EXPECT_EQ(toSARIFURI(file, root), uri) << file;
}

/// A package can have any number of parts, in any depth.
TEST(Picture, staysSmall) {
    PackageGraph graph;
    graph.nodes.push_back({GraphNode::Kind::Package, "/"});
    for (std::size_t i = 1; i < 20'000; ++i) {
        graph.nodes.push_back(
            {GraphNode::Kind::Part, "/" + std::to_string(i % 100) + "/" + std::to_string(i) + ".x"});
        graph.nodes.back().column = i % 3 == 0 ? i : 1;
        graph.edges.push_back({i % 7 == 0 ? i / 2 : 0, i, i % 2 == 0, "t"});
    }
    const PackageGraph small = condense(graph);
    EXPECT_LE(small.nodes.size(), 400U);
    EXPECT_LE(small.edges.size(), 1'000U);
    std::size_t parts = 0;
    for (const GraphNode& node : small.nodes)
        parts += node.count;
    EXPECT_EQ(parts, graph.nodes.size());
}

/// Names come from packages. Each of these would end a string, begin an entity or another statement in one of the formats.
TEST(Picture, letsNoNameBecomeAnythingElse) {
    PackageGraph graph;
    graph.nodes.push_back({GraphNode::Kind::Package, "/"});
    graph.nodes.push_back(
        {GraphNode::Kind::External, "\"];x[label=\"y\\G\"]\n%%{init}%%`</text><script>&lt;'#"});
    graph.edges.push_back({0, 1, false, "urn:\"];a->b/</title>\\"});
    const std::string dot = toDOT(graph);
    EXPECT_NE(dot.find(R"(label="\"];x[label=\"y\\G\"] %%{init}%%`</text><script>&amp;lt;'#")"),
              std::string::npos)
        << dot;
    EXPECT_NE(dot.find(R"(tooltip="title>\\")"), std::string::npos) << dot;
    const std::string mermaid = toMermaid(graph);
    EXPECT_NE(mermaid.find(
                  "n1[\"#34;#93;#59;x#91;label#61;#34;y#92;G#34;#93; #37;#37;#123;init#125;#37;#37;#96;#60;/"
                  "text#62;#60;script#62;#38;lt#59;#39;#35;\"]:::external\n"),
              std::string::npos)
        << mermaid;
    EXPECT_NE(mermaid.find("\n  classDef external fill:#"), std::string::npos)
        << mermaid; // else it has no colour
    EXPECT_EQ(toSVG(graph).find("<script"), std::string::npos);
}

} // namespace
} // namespace opc::inspection
