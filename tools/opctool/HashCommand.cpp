#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "HashList.hpp"
#include "RepeatableOption.hpp"
#include "TerminalText.hpp"

#include <opc/inspection/ContentHash.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;
using nlohmann::ordered_json;

struct HashArguments {
    std::vector<std::string> ignored;
    std::string list;
    bool parts = false;

    HashOptions options() const {
        const auto has = [this](const char* name) {
            return std::find(ignored.begin(), ignored.end(), name) != ignored.end();
        };
        return {has("core-properties"), has("rel-ids"), has("signatures")};
    }
};

void printJSON(FileRun& run, const ContentHash& hash) {
    JSONOutput& output = run.json();
    output.beginObject();
    output.add(hash.sha256, "sha256");
    output.beginArray("parts");
    for (const HashedPart& part : hash.parts)
        output.add({{"name", part.name}, {"sha256", part.sha256}});
    output.end();
    output.end();
}

void hash(FileRun& run, const HashArguments& arguments) {
    const ContentHash hash = hashContent(openArchive(run), arguments.options());
    if (run.wantsJSON())
        return printJSON(run, hash);
    const auto print = [&run](const std::string& digest, const std::string& name) {
        run.out() << withoutControlCharacters(hashLine(digest, name)) << '\n';
    };
    if (!arguments.parts)
        print(hash.sha256, run.path());
    else
        for (const HashedPart& part : hash.parts)
            print(part.sha256, run.path() + '!' + part.name);
}

/// @return whether the package has the hash, or the part that it is of
bool holds(const ExpectedHash& expected, const ContentHash& hash) {
    if (expected.part.empty())
        return expected.hash == hash.sha256;
    return std::any_of(hash.parts.begin(), hash.parts.end(), [&expected](const HashedPart& part) {
        return part.name == expected.part && part.sha256 == expected.hash;
    });
}

void check(FileRun& run, const HashArguments& arguments, const HashList& list) {
    const ContentHash hash = hashContent(openArchive(run), arguments.options());
    for (const ExpectedHash& expected : list.at(run.path())) {
        const bool isSame = holds(expected, hash);
        run.out() << withoutControlCharacters(expected.name) << (isSame ? ": OK\n" : ": FAILED\n");
        if (!isSame)
            run.sayNo();
    }
}

void runAll(Files& files, const HashArguments& arguments) {
    files.options.namesFiles = true;
    if (arguments.list.empty()) {
        files.run([&arguments](FileRun& run) { hash(run, arguments); });
        return;
    }
    if (!files.selection.packages.empty() || files.selection.isMany() ||
        files.options.output.format() != OutputOptions::Format::Text)
        throw CLI::ValidationError("--check", "takes its packages from the list, and prints text");
    const HashList list = readHashList(arguments.list);
    for (const auto& [file, expected] : list)
        files.selection.packages.push_back(file);
    files.run([&](FileRun& run) { check(run, arguments, list); });
}

void declareHash(CLI::App& command) {
    const auto arguments = std::make_shared<HashArguments>();
    const auto files = addFiles(command, HASH);
    addRepeatable(&command, "--ignore", arguments->ignored,
                  "Leave out core-properties, rel-ids (the Ids of relationships) or signatures")
        ->delimiter(',')
        ->check(CLI::IsMember({"core-properties", "rel-ids", "signatures"}))
        ->type_name("NAME");
    CLI::Option* const parts =
        command.add_flag("--parts", arguments->parts, "Print the digest of each part, not of the package");
    command
        .add_option("-c,--check", arguments->list,
                    "Check the hashes that this file lists; - is standard input")
        ->type_name("FILE")
        ->excludes(parts);
    command.callback([files, arguments] { runAll(*files, *arguments); });
}

} // namespace

const Command HASH{
    "hash",
    "Print a digest of what a package holds",
    declareHash,
    "It is the same for two packages whose parts have the same names, content types and bytes, and whose "
    "relationships are the same. The archive doesn't count: order, compression, times, items that are no "
    "parts. Nor does the form of relationships and content types. The digest of a part is that of its bytes. "
    "Lists are those of sha256sum. Check a list with the --ignore that it was made with.",
    "opctool hash report.docx\n"
    "opctool hash *.docx --ignore core-properties,rel-ids >hashes\n"
    "opctool hash *.docx >hashes && opctool hash -c hashes",
    "0 success, 1 if a package doesn't have the hash of the list, 2 wrong usage, 3 failure",
    R"({
  "type": "object",
  "required": ["sha256", "parts"],
  "properties": {
    "sha256": {"type": "string"},
    "parts": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "sha256"],
        "properties": {"name": {"type": "string"}, "sha256": {"description": "of its bytes", "type": "string"}}
      }
    }
  }
})"};

} // namespace opctool
