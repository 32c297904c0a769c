#include "tools/OpctoolFixture.hpp"

#include <algorithm>
#include <ctime>

namespace {

using namespace opc::test;
using nlohmann::json;

TEST_F(Opctool, propsChangesAndPrintsProperties) {
    run("new p.zip");
    EXPECT_EQ(run("props p.zip").output, "");
    EXPECT_EQ(list("props p.zip"), json::object());
    const std::pair<const char*, const char*> cases[] = {
        {"--set title=é --set 'creator=a=b' --set subject= --set version=1",
         R"({"title": "é", "creator": "a=b",
             "subject": "", "version": "1"})"},
        {"--unset subject --unset title --unset revision --set title=t", R"({"title": "t", "creator": "a=b",
             "version": "1"})"},
        {"--clear --set created=2024 --set modified=2024-02-29T13:45+01:00 --set "
         "lastPrinted=2024-02-29T13:45:59.5Z",
         R"({"created": "2024-01-01T00:00:00Z", "modified": "2024-02-29T12:45:00Z",
             "lastPrinted": "2024-02-29T13:45:59Z"})"},
        {"--clear --keyword red:en --keyword 'blau und rot:de-DE' --keyword 'a;b' --keyword 12:30 "
         "--keyword urn:x: --keyword '[x,y]' --keyword ''",
         R"({"keywords": [{"text": "red", "language": "en"}, {"text": "blau und rot", "language": "de-DE"},
             {"text": "a;b"}, {"text": "12:30"}, {"text": "urn:x"}, {"text": "[x,y]"}, {"text": ""}]})"},
        {"--set category=k --keyword one", R"({"category": "k", "keywords": [{"text": "one"}]})"},
        {"--keyword a:b1 --keyword a:en- --keyword a:en--x --keyword a:123 --keyword a:abcdefghi --keyword "
         "a:x-1",
         R"({"category": "k", "keywords": [{"text": "a:b1"}, {"text": "a:en-"}, {"text": "a:en--x"},
             {"text": "a:123"}, {"text": "a:abcdefghi"}, {"text": "a", "language": "x-1"}]})"},
        {"--unset keywords", R"({"category": "k"})"},
        {"--clear", "{}"},
    };
    for (const auto& [arguments, properties] : cases) {
        const Outcome outcome = run(std::string("props p.zip ") + arguments);
        EXPECT_EQ(outcome.status, 0) << arguments << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(list("props p.zip"), json::parse(properties)) << arguments;
    }
    EXPECT_EQ(list("rels p.zip").size(), 1U);
    EXPECT_EQ(list("ls p.zip").size(), 1U);
}

TEST_F(Opctool, propsPrintsARowForEachPropertyAndKeyword) {
    run("new p.zip");
    run("props p.zip --set \"description=$(printf 'two\\nlines \\302\\233 \\177')\" --keyword a:en --keyword "
        "b");
    EXPECT_EQ(run("props p.zip").output, "PROPERTY     VALUE\n"
                                         "description  two lines    \n"
                                         "keywords     a [en]\n"
                                         "keywords     b\n");
}

std::string currentTime() {
    std::array<char, 32> text{};
    const std::time_t now = std::time(nullptr);
    std::strftime(text.data(), text.size(), "%FT%TZ", std::gmtime(&now));
    return text.data();
}

TEST_F(Opctool, propsNowIsTheCurrentTime) {
    run("new p.zip");
    const std::string before = currentTime();
    run("props p.zip --set created=now");
    const std::string created = list("props p.zip")["created"];
    EXPECT_LE(before, created);
    EXPECT_LE(created, currentTime());
}

TEST_F(Opctool, propsMendsARelationshipThatLeadsToNoPart) {
    const std::string core =
        "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
    run("new p.zip");
    run("relate p.zip / " + core + " docProps/core.xml --id core");
    const std::string line =
        "opctool: p.zip: /_rels/.rels#core: the core properties relationship leads to no part: "
        "docProps/core.xml; ";
    const Outcome read = run("props p.zip --json");
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.output, "{}\n");
    EXPECT_EQ(read.errors, line + "there are none\n");
    for (const char* command : {"props p.zip --strict", "props p.zip --set title=t --strict"})
        expectFailure(
            command,
            "PartNotFound: No part found with the name:/docProps/core.xml; the core properties "
            "relationship core leads to docProps/core.xml; --lenient takes the package as one without "
            "them",
            "p.zip");
    EXPECT_EQ(run("props p.zip --set title=t").errors, line + "new ones are written\n");
    EXPECT_EQ(list("props p.zip"), nlohmann::json({{"title", "t"}}));
    EXPECT_EQ(list("rels p.zip").at(0)["target"], "docProps/core.xml");
}

TEST_F(Opctool, propsLeavesTheFileAloneIfItCanNotDoAllItIsTold) {
    run("new p.zip");
    run("props p.zip --clear");
    EXPECT_EQ(list("ls p.zip"), json::array()) << "nothing to drop and nothing to write";
    run("props p.zip --set title=t");
    const auto before = readFile(folder / "p.zip");
    const std::tuple<const char*, int, const char*> cases[] = {
        {"--set title=u --set titel=u", 2, "--set: titel is no property"},
        {"--set title", 2, "--set: title isn't NAME=VALUE"},
        {"--set Title=u", 2, "--set: Title is no property"},
        {"--set =u", 2, "--set:  is no property"},
        {"--set keywords=u", 2, "--set: keywords are set by --keyword"},
        {"--set title=u --set created=2024-02-30", 2, "--set: 2024-02-30 is no time"},
        {"--set modified=1399", 2, "--set: 1399 is no time"},
        {"--set lastPrinted=", 2, "--set:  is no time"},
        {"--clear --unset none", 2, "--unset: none is no property"},
        {"--clear --json", 2, "--json excludes --clear"},
        {"--set title=u extra", 2, ""},
        {"--set \"title=$(printf '\\001')\"", 3, "opctool: p.zip: InvalidPartContent: "},
    };
    for (const auto& [arguments, status, errors] : cases) {
        const Outcome outcome = run(std::string("props p.zip ") + arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_EQ(outcome.errors.rfind(errors, 0), 0U) << outcome.errors;
        EXPECT_EQ(readFile(folder / "p.zip"), before) << arguments;
    }
}

TEST_F(Opctool, clearMendsPropertiesThatCanNotBeRead) {
    write("bad.xml", "<bad/>");
    run("new p.zip");
    run("add p.zip /core.xml bad.xml --type application/vnd.openxmlformats-package.core-properties+xml");
    run("relate p.zip / "
        "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties "
        "/core.xml");
    EXPECT_EQ(run("props p.zip").status, 3);
    EXPECT_EQ(run("props p.zip --set title=t").status, 3);
    const json overview = list("info p.zip");
    EXPECT_TRUE(overview["coreProperties"].is_null());
    EXPECT_NE(overview["corePropertiesFailure"], "");
    EXPECT_NE(run("info p.zip").output.find("\nCore properties: 0\ncan't be read: "), std::string::npos);
    EXPECT_EQ(run("props p.zip --clear --set title=t").status, 0);
    EXPECT_EQ(list("props p.zip"), json::parse(R"({"title": "t"})"));
}

TEST_F(Opctool, infoGivesAnOverview) {
    write("a", std::string(1234567, 'x'));
    run("new p.zip");
    run("add p.zip /a.bin a --type a/b");
    run("add p.zip /b.bin a --type a/b");
    run("add p.zip /thumb.png a --type image/png");
    run("relate p.zip / http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail "
        "/thumb.png");
    run("relate p.zip /a.bin urn:t /b.bin");
    run("relate p.zip /b.bin urn:t http://h/ --external");
    run("props p.zip --set title=t");
    addItem("p.zip", "[trash]/0000.dat");

    const json overview = list("info p.zip");
    EXPECT_EQ(overview["size"], std::filesystem::file_size(folder / "p.zip"));
    EXPECT_EQ(overview["parts"]["count"], 4);
    EXPECT_EQ(overview["parts"]["byContentType"][0], json::parse(R"({"contentType": "a/b", "parts": 2,
                                                                     "size": 2469134})"));
    EXPECT_EQ(overview["relationships"]["count"], 4);
    EXPECT_EQ(overview["relationships"]["byType"][2],
              json::parse(R"({"type": "urn:t", "count": 2, "external": 1})"));
    EXPECT_EQ(overview["coreProperties"], json::parse(R"({"title": "t"})"));
    EXPECT_EQ(overview["thumbnails"], json::parse(R"(["/thumb.png"])"));
    EXPECT_EQ(overview["ignored"][0]["name"], "[trash]/0000.dat");

    const std::string text = run("info p.zip").output;
    for (const char* line :
         {"\n    2  2,469,134  a/b\n", "\nRelationships: 4, 1 of them external\n",
          "\n    2         1  urn:t\n", "\nThumbnails: 1\n/thumb.png\n", "\nCore properties: 1\n",
          "\ntitle     t\n", "\nIn the container beside parts: 1\n", "\n[trash]/0000.dat  "})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST_F(Opctool, noCommandToTheTerminalComesOutOfAPackage) {
    write("properties", "<?xml version='1.1'?><cp:coreProperties xmlns:cp='http://schemas.openxmlformats.org/"
                        "package/2006/metadata/core-properties'><cp:lastPrinted>&#x1b;[2J&#x9b;2J&#xa;"
                        "</cp:lastPrinted></cp:coreProperties>");
    const std::string type = "http://schemas.openxmlformats.org/package/2006/relationships/metadata/";
    const std::string unseen = "\u202E\u061C\u2028\u200B\uFEFF\u00AD\U000E0041";
    for (const std::string& command :
         {std::string("new p.zip"), std::string("add p.zip /p.xml properties --type application/xml"),
          "relate p.zip / " + type + "core-properties /p.xml",
          "relate p.zip / " + type +
              "thumbnail 'a\x7f\xC2\x9B"
              "2Jb c" +
              unseen + "\u00E9' --external"})
        ASSERT_EQ(run(command).status, 0) << command;
    const Outcome failure = run("props p.zip");
    EXPECT_EQ(failure.status, 3);
    EXPECT_EQ(std::count(failure.errors.begin(), failure.errors.end(), '\n'), 1) << failure.errors;
    const Outcome overview = run("info p.zip");
    EXPECT_EQ(overview.status, 0);
    EXPECT_NE(overview.output.find("\na  2Jb c       \u00E9\n"), std::string::npos) << overview.output;
    const Outcome document = run("rels p.zip --json");
    EXPECT_EQ(nlohmann::json::parse(document.output)[1]["target"], "a\x7f\u009B2Jb c" + unseen + "\u00E9");
    const Outcome usage = run("ls p.zip '\x1b[2J\x7f\u009B" + unseen + "'");
    EXPECT_EQ(usage.status, 2);
    EXPECT_GT(std::count(usage.errors.begin(), usage.errors.end(), '\n'), 1) << usage.errors;
    const Outcome id = run("relate p.zip / t x --external --id a\u061C\uFEFF");
    EXPECT_EQ(id.output, "a  \n");
    for (const std::string& text :
         {failure.errors, overview.output, document.output, usage.errors, id.output})
        for (const char* command : {"\x1b", "\x7f", "\u009B", "\u202E", "\u061C", "\u2028", "\u200B",
                                    "\uFEFF", "\u00AD", "\U000E0041"})
            EXPECT_EQ(text.find(command), std::string::npos) << text;
}

TEST_F(Opctool, propsOfOfficeDocumentsAreAFixedPoint) {
    for (const std::string name : OFFICE_FILES) {
        SCOPED_TRACE(name);
        copy(name.c_str(), name.c_str());
        const json before = list("props " + name);
        // A program that gives the relationship a type of its own: the package counts as having none.
        const std::size_t added = before.empty() ? 1 : 0;
        EXPECT_EQ(
            run("props " + name).errors.rfind("opctool: " + name + ": warning: /docProps/core.xml has ", 0) ==
                0,
            before.empty());
        const std::size_t relationships = list("rels " + name).size();
        const std::size_t parts = list("ls " + name).size();
        EXPECT_EQ(run("props " + name + " --set title='A new title'").status, 0);
        json expected = before;
        expected["title"] = "A new title";
        EXPECT_EQ(list("props " + name), expected);
        EXPECT_EQ(list("rels " + name).size(), relationships + added);
        EXPECT_EQ(list("ls " + name).size(), parts + added);
        const std::string part = before.empty() ? "/metadata/coreProperties.xml" : "/docProps/core.xml";
        const std::string document = run("cat " + name + " " + part).output;
        EXPECT_EQ(run("props " + name + " --set title='A new title'").status, 0);
        EXPECT_EQ(run("cat " + name + " " + part).output, document);
    }
}

} // namespace
