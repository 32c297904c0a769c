#include "tools/OpctoolFixture.hpp"

#include <numeric>

namespace {

using namespace opc::test;
using nlohmann::json;
namespace fs = std::filesystem;

TEST_F(Opctool, buildsAPackageStepByStep) {
    write("note.txt", "hello");
    EXPECT_EQ(run("new p.zip").status, 0);
    EXPECT_EQ(list("ls p.zip"), json::array());
    EXPECT_EQ(run("add p.zip /notes/a.txt note.txt --type 'text/plain; charset=utf-8'").status, 0);
    EXPECT_EQ(run("relate p.zip / urn:t /notes/a.txt").output, "rId1\n");
    EXPECT_EQ(run("relate p.zip /notes/a.txt urn:t 'dir\\é' --external --id link").output, "link\n");

    EXPECT_EQ(list("ls p.zip"),
              json::parse(R"([{"name": "/notes/a.txt", "contentType": "text/plain;charset=utf-8",
                                                 "size": 5, "relationships": 1}])"));
    const json package =
        json::parse(R"({"source": "/", "id": "rId1", "type": "urn:t", "target": "notes/a.txt",
                                         "mode": "Internal", "resolved": "/notes/a.txt"})");
    const json part =
        json::parse(R"({"source": "/notes/a.txt", "id": "link", "type": "urn:t", "target": "dir\\é",
                                      "mode": "External", "resolved": null})");
    EXPECT_EQ(list("rels p.zip"), json::array({package}));
    EXPECT_EQ(list("rels p.zip /notes/a.txt"), json::array({part}));
    EXPECT_EQ(list("rels p.zip --all"), json::array({package, part}));
    EXPECT_EQ(run("cat p.zip /NOTES/a.txt").output, "hello");

    for (const char* content : {"", "a longer text"}) {
        write("new.txt", content);
        EXPECT_EQ(run("put p.zip /notes/A.txt new.txt").status, 0);
        EXPECT_EQ(run("cat p.zip /notes/a.txt").output, content);
    }
    EXPECT_EQ(list("rels p.zip --all"), json::array({package, part}));

    EXPECT_EQ(run("unrelate p.zip / rId1").status, 0);
    EXPECT_EQ(run("rm p.zip /notes/a.txt").status, 0);
    EXPECT_EQ(list("rels p.zip --all"), json::array());
}

TEST_F(Opctool, printsAlignedColumnsWithoutColour) {
    write("a", std::string(1234, 'x'));
    run("new p.zip");
    run("add p.zip /long/name.bin a --type a/b");
    run("add p.zip /z a --type application/x");
    EXPECT_EQ(run("ls p.zip").output, "NAME            CONTENT TYPE   SIZE  RELATIONSHIPS\n"
                                      "/long/name.bin  a/b            1234              0\n"
                                      "/z              application/x  1234              0\n");
    EXPECT_EQ(run("rels p.zip").output, "");
}

TEST_F(Opctool, failuresPrintOneLineAndLeaveTheFileAsItWas) {
    write("note.txt", "hello");
    write("bad.zip", "PK\x03\x04 cut short");
    run("new p.zip");
    run("add p.zip /a.txt note.txt --type text/plain");
    const std::pair<const char*, const char*> cases[] = {
        {"add p.zip /A.txt note.txt --type text/plain",
         "PartAlreadyExists: Cannot use a part name that already exists: /A.txt"},
        {"add p.zip /b. note.txt --type text/plain",
         "InvalidPartName: A segment shall not end with a dot ('.') character [M1.9]"},
        {"add p.zip /b note.txt --type text",
         "InvalidContentType: Could not successfully parse content type string"},
        {"put p.zip /b.txt note.txt", "PartNotFound: No part found with the name:/b.txt"},
        {"rm p.zip /b.txt", "PartNotFound: No part found with the name:/b.txt"},
        {"cat p.zip /b.txt", "PartNotFound: No part found with the name:/b.txt"},
        {"rels p.zip /b.txt", "PartNotFound: No part found with the name:/b.txt"},
        {"unrelate p.zip / rId1", "RelationshipNotFound: Relationship ID does not exist"},
        {"relate p.zip / urn:t http://h/",
         "InvalidRelationshipTarget: Relationship target cannot be an absolute URI for an internal "
         "relationship"},
        {"new p.zip", "Exception: The file exists already; --force replaces it"},
    };
    for (const auto& [arguments, line] : cases)
        expectFailure(arguments, line, "p.zip");
    EXPECT_EQ(run("ls none.zip").errors.rfind("opctool: none.zip: PackageNotFound: can", 0), 0U);
    EXPECT_EQ(run("ls bad.zip").errors.rfind("opctool: bad.zip: PackageOpenFailed: can", 0), 0U);
    EXPECT_FALSE(fs::exists(folder / "none.zip"));
}

TEST_F(Opctool, wrongUsageHasAStatusOfItsOwn) {
    run("new p.zip");
    for (const char* arguments :
         {"", "nonsense", "ls", "ls p.zip extra", "ls p.zip --nonsense", "rels p.zip / --all",
          "add p.zip /a none.txt --type a/b", "add p.zip /a p.zip", "relate p.zip / urn:t",
          "relate p.zip / urn:t '' --external", "relate p.zip / ' ' /a", "props p.zip --set title=M\xFCller"})
        expectWrongUsage(arguments);
    EXPECT_NE(run("--version").output, "");
    for (const std::string command :
         {"", "ls", "rels", "cat", "new", "add", "put", "rm", "relate", "unrelate", "props", "info"}) {
        const std::string arguments = command + " --help";
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments;
        EXPECT_NE(outcome.output, "") << arguments;
    }
}

TEST_F(Opctool, takesWhatIsOddUnlessItIsToldToBeStrict) {
    write("note.txt", "hello");
    run("keygen k");
    run("new odd.zip");
    run("add odd.zip /a.txt note.txt --type text/plain");
    run("relate odd.zip / urn:t a.txt");
    addItem("odd.zip", "b.jpg");
    const char* const uncovered =
        "opctool: p.zip: warning: no signature covers what other programs may read: "
        "/b.jpg: no content type covers it\n";
    for (const std::string command :
         {"ls p.zip", "rels p.zip", "info p.zip", "props p.zip", "cat p.zip /a.txt", "coverage p.zip",
          "props p.zip --set title=t", "add p.zip /c.txt note.txt --type text/plain",
          "put p.zip /a.txt note.txt", "rm p.zip /a.txt", "relate p.zip /a.txt urn:t http://h/ --external",
          "unrelate p.zip / rId1", "sign p.zip --key k.key", "unsign p.zip --all"}) {
        fs::copy_file(folder / "odd.zip", folder / "p.zip", fs::copy_options::overwrite_existing);
        expectFailure(command + " --strict",
                      "ContentTypeNotFound: No content type was found for part:/b.jpg; --lenient opens the "
                      "package all the same",
                      "p.zip");
        for (const char* option : {"", " --lenient"}) {
            const Outcome outcome = run(command + option);
            EXPECT_EQ(outcome.status, 0) << command;
            EXPECT_EQ(
                outcome.errors,
                "opctool: p.zip: /b.jpg: no content type covers it; hidden, and kept in the file [M2.4]\n" +
                    std::string(command.rfind("sign", 0) == 0 ? uncovered : ""))
                << command;
            EXPECT_EQ(folder.run("unzip -p p.zip b.jpg").output, "x") << command;
            fs::copy_file(folder / "odd.zip", folder / "p.zip", fs::copy_options::overwrite_existing);
        }
    }
    EXPECT_EQ(run("ls odd.zip --lenient --strict").status, 2);
}

TEST_F(Opctool, takesBytesBehindTheArchiveUnlessItIsToldToBeStrict) {
    write("note.txt", "hello");
    run("new p.zip");
    write("p.zip", readFile<std::string>(folder / "p.zip") + "\n");
    const std::string behind = "1 byte stands behind the end of the archive";
    EXPECT_NE(run("ls p.zip --strict").errors.find(behind + "; --lenient opens"), std::string::npos);
    const std::string line = "opctool: p.zip: " + behind + "; not read, and dropped by the next save\n";
    EXPECT_EQ(run("ls p.zip").errors, line);
    EXPECT_EQ(run("add p.zip /a.txt note.txt --type text/plain").errors, line);
    EXPECT_EQ(run("ls p.zip --strict").errors, "");
}

TEST_F(Opctool, tellsOfVeryManyOdditiesWithFewLines) {
    write("make.py", R"(import zipfile
with zipfile.ZipFile('p.zip', 'a') as archive:
    for i in range(2000):
        archive.writestr('\x1b[2J%d.jpg' % i, '')
)");
    run("new p.zip");
    ASSERT_EQ(folder.run("python3 make.py").status, 0);
    const std::string errors = run("ls p.zip").errors;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 101) << errors;
    EXPECT_NE(errors.find("\nopctool: p.zip: and 1900 more\n"), std::string::npos) << errors;
    EXPECT_EQ(errors.find('\x1b'), std::string::npos);
}

TEST_F(Opctool, readsNoMoreThanItNeedsOfADamagedPackage) {
    std::string text(256, '\0');
    std::iota(text.begin(), text.end(), '\0'); // which doesn't compress
    write("text", text);
    run("new p.zip");
    run("add p.zip /a text --type a/b");
    run("add p.zip /b text --type a/b");
    run("keygen k");
    for (const char* part : {"/a", "/b"})
        run("sign p.zip --key k.key --part " + std::string(part));
    std::string archive = readFile<std::string>(folder / "p.zip");
    ++archive[archive.rfind(text)];
    write("p.zip", archive);
    EXPECT_EQ(run("cat p.zip /b").errors,
              "opctool: p.zip: Exception: b: can't read: its checksum is wrong\n");
    EXPECT_EQ(run("cat p.zip /a").output, text);
    EXPECT_EQ(list("ls p.zip").back()["size"], text.size());
    for (const char* command : {"info", "rels", "props"})
        EXPECT_EQ(run(command + std::string(" p.zip")).status, 0) << command;
    const Outcome verified = run("verify p.zip --public k.pub --json");
    EXPECT_EQ(verified.status, 3);
    const json signatures = json::parse(verified.output);
    EXPECT_TRUE(signatures[0]["holds"]);
    EXPECT_EQ(signatures[1]["reason"], "p.zip: b: can't read: its checksum is wrong");
}

TEST_F(Opctool, failsIfItsOutputCanNotBeWritten) {
    run("new p.zip");
    EXPECT_EQ(run("ls p.zip --json >/dev/full").status, 3);
}

TEST_F(Opctool, changesWhatOfficeProgramsWrote) {
    write("note.txt", "hello");
    for (const std::string name : OFFICE_FILES) {
        SCOPED_TRACE(name);
        copy(name.c_str(), name.c_str());
        const json before = list("ls " + name);
        EXPECT_GT(before.size(), 3U);
        EXPECT_GT(list("rels " + name + " --all").size(), 3U);
        EXPECT_EQ(run("add " + name + " /notes/note.txt note.txt --type text/plain").status, 0);
        const Outcome relate = run("relate " + name + " / urn:note /notes/note.txt");
        EXPECT_EQ(relate.status, 0);
        EXPECT_EQ(list("ls " + name).size(), before.size() + 1);
        EXPECT_EQ(folder.run("unzip -tqq '" + name + "'").status, 0);
        EXPECT_EQ(run("unrelate " + name + " / " + relate.output).status, 0);
        EXPECT_EQ(run("rm " + name + " /notes/note.txt").status, 0);
        EXPECT_EQ(list("ls " + name), before);
    }
}

TEST_F(Opctool, endedByASignalLeavesNothingBehind) {
    ASSERT_EQ(run("new a.zip").status, 0);
    const auto before = readFile(folder / "a.zip");
    write("saving.py", R"(import glob, os, signal, subprocess
with open('big', 'wb') as big:
    big.write(os.urandom(1 << 25))
for name in 'SIGHUP', 'SIGINT', 'SIGTERM':
    number = getattr(signal, name)
    tool = subprocess.Popen([')" OPCTOOL R"(', 'add', 'a.zip', '/big', 'big', '--type', 'a/b'],
                            preexec_fn=lambda: signal.signal(number, signal.SIG_DFL))
    while tool.poll() is None and not glob.glob('.a.zip*'):
        pass
    tool.send_signal(number)
    print(tool.wait() == -number, sorted(os.listdir()))
)");
    write("asking.py", R"(import os, pty, signal, subprocess, termios
terminal = pty.openpty()[1]
echoes = lambda: bool(termios.tcgetattr(terminal)[3] & termios.ECHO)
tool = subprocess.Popen([')" OPCTOOL R"(', 'sign', 'a.zip', '--p12', 'a.zip'], stdin=terminal,
                        preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
while tool.poll() is None and echoes():
    pass
tool.send_signal(signal.SIGINT)
print(tool.wait() == -signal.SIGINT, echoes())
)");
    EXPECT_EQ(folder.run("python3 asking.py 2>stderr").output, "True True\n");
    std::filesystem::remove(folder / "asking.py");
    const std::string line = "True ['a.zip', 'big', 'saving.py', 'stderr']\n";
    EXPECT_EQ(folder.run("python3 saving.py 2>stderr").output, line + line + line);
    EXPECT_EQ(readFile(folder / "a.zip"), before);
}

} // namespace
