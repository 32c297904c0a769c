#include "ArchiveFile.hpp"
#include "ArchiveReports.hpp"
#include "Commands.hpp"
#include "ContentTypesFile.hpp"
#include "Files.hpp"
#include "SignatureOption.hpp"

#include <opc/editing/Packing.hpp>
#include <opc/editing/Unpacking.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <map>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using namespace opc::editing;

struct UnpackArguments {
    std::string folder;
    bool leavesOriginal = false;
    bool isForced = false;
};

void unpack(FileRun& run, const UnpackArguments& arguments) {
    UnpackingOptions options;
    options.keepsOriginal = !arguments.leavesOriginal;
    options.isForced = arguments.isForced;
    options.limits = run.options().reading.zip;
    const auto unpackOrTry = run.options().dryRun ? tryUnpacking : opc::editing::unpack;
    const Unpacked unpacked = unpackOrTry(openArchive(run), arguments.folder, options);
    if (run.wantsJSON()) {
        ordered_json renamed = ordered_json::array();
        for (const RenamedItem& item : unpacked.renamed)
            renamed.push_back({{"item", item.item}, {"file", item.file}, {"reason", item.reason}});
        run.json().add(ordered_json{{"files", unpacked.files},
                                    {"bytes", unpacked.bytes},
                                    {"renamed", renamed},
                                    {"hidden", hiddenToJSON(unpacked.hidden)}});
        return;
    }
    for (const RenamedItem& item : unpacked.renamed)
        run.remark(item.item + " is in the file " + item.file + ": " + item.reason);
    remark(run, unpacked.hidden, "no file shows ");
    run.out() << unpacked.files << " files\n";
}

void declareUnpack(CLI::App& command) {
    const auto arguments = std::make_shared<UnpackArguments>();
    const auto files = addFile(command, UNPACK);
    command.add_option("DIR", arguments->folder, "The folder for the files: a new or empty one")
        ->required()
        ->type_name("");
    command.add_flag("--no-original", arguments->leavesOriginal,
                     "Don't keep the package itself in DIR/.opctool, as is right for a folder under Git");
    command.add_flag("--force", arguments->isForced,
                     "Take a folder that isn't empty, and replace files that have the names of items");
    addDryRun(command, files->options);
    addJSONOptions(command, files->options.output);
    command.callback([files, arguments] { files->run([&](FileRun& run) { unpack(run, *arguments); }); });
}

struct PackArguments {
    std::string typesFile;
    std::map<std::string, std::string> contentTypes;
};

void printText(FileRun& run, const Packed& packed) {
    remark(run, packed.hidden, "comes back from the original: ");
    remark(run, packed.dropped, "is left out: ");
    if (packed.isOriginal) {
        run.printLine("nothing has changed: the original");
        return;
    }
    const auto print = [&](const char* what, const std::vector<std::string>& items) {
        for (const std::string& item : items)
            run.printLine(what + (' ' + item));
    };
    print("added", packed.added);
    print("replaced", packed.replaced);
    print("removed", packed.removed);
}

/// Whether a file would lie in a folder, or in one that lies in it.
bool isInside(const std::string& file, const std::string& folder) {
    const std::filesystem::path whole = std::filesystem::weakly_canonical(file);
    const std::filesystem::path top = std::filesystem::weakly_canonical(folder);
    return std::mismatch(top.begin(), top.end(), whole.begin(), whole.end()).first == top.end();
}

Packed packFolder(const std::string& folder, const PackingOptions& options) {
    try {
        return opc::editing::pack(folder, options);
    } catch (opc::editing::BreaksSignatures& e) {
        nameSignatureOption(e);
        throw;
    }
}

void pack(FileRun& run, const PackArguments& arguments) {
    if (run.target() != "-" && isInside(run.target(), run.path()))
        throw CLI::ValidationError("--output", "lies in DIR, so that it would be packed the next time");
    PackingOptions options;
    options.archive = run.options().reading.zip;
    options.contentTypes = arguments.contentTypes;
    options.breaksSignatures = run.options().breakSignatures;
    const Packed packed = packFolder(run.path(), options);
    deliver(run, packed.archive, {});
    if (!run.wantsJSON())
        return printText(run, packed);
    run.json().add(ordered_json{{"original", packed.isOriginal},
                                {"items", packed.items},
                                {"added", packed.added},
                                {"replaced", packed.replaced},
                                {"removed", packed.removed},
                                {"hidden", hiddenToJSON(packed.hidden)},
                                {"dropped", hiddenToJSON(packed.dropped)},
                                {"brokenSignatures", packed.brokenSignatures}});
}

void declarePack(CLI::App& command) {
    const auto arguments = std::make_shared<PackArguments>();
    const auto files = std::make_shared<Files>();
    files->options.command = &PACK;
    files->selection.takesFolders = true;
    files->options.isChange = true;
    command
        .add_option_function<std::string>(
            "DIR", [files](const std::string& path) { files->selection.packages = {path}; },
            "The folder with the files")
        ->required()
        ->type_name("");
    addReadOptions(command, files->options.reading);
    addOutputOptions(command, files->options.output);
    command.add_option("-o,--output", files->options.target, "The package to write; - is standard output")
        ->required()
        ->type_name("FILE");
    command
        .add_option(
            "--types", arguments->typesFile,
            "Content types of new parts: in each line an extension or the name of a part, and the type")
        ->check(CLI::ExistingFile)
        ->type_name("FILE");
    addSignatureOption(command, files->options);
    addDryRun(command, files->options);
    addJSONOptions(command, files->options.output);
    command.callback([files, arguments] {
        if (!arguments->typesFile.empty())
            arguments->contentTypes = readContentTypes(arguments->typesFile);
        files->run([&](FileRun& run) { pack(run, *arguments); });
    });
}

} // namespace

const Command UNPACK{
    "unpack",
    "Write the items of a package to files in a folder",
    declareUnpack,
    "Each part, the content types, the relationships and what else the archive has become files with the "
    "same "
    "bytes; pack makes the package of them again. No file is written outside DIR, whatever the package says. "
    "An item "
    "whose name not every system can hold, or that differs from another one only in case, gets a file with a "
    "similar "
    "name, which pack knows. What no file can show is reported: comments, bytes between the items, items "
    "that can't be "
    "read. DIR/.opctool has the package itself, so that pack gives back untouched items as they were.",
    "opctool unpack report.docx report\n"
    "opctool unpack report.docx report --no-original",
    "",
    R"({
  "type": "object",
  "required": ["files", "bytes", "renamed", "hidden"],
  "properties": {
    "files": {"type": "integer"},
    "bytes": {"description": "in all files together", "type": "integer"},
    "renamed": {
      "description": "items whose files have other names",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["item", "file", "reason"],
        "properties": {"item": {"type": "string"}, "file": {"type": "string"}, "reason": {"type": "string"}}
      }
    },
    "hidden": {
      "description": "what no file shows",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["item", "what"],
        "properties": {"item": {"description": "null for bytes that belong to none", "type": ["string", "null"]},
                       "what": {"type": "string"}}
      }
    }
  }
})"};

const Command PACK{"pack",
                   "Make a package of the files in a folder",
                   declarePack,
                   "DIR is a folder that unpack has made, or any with the files of a package. Items whose "
                   "files have the bytes that "
                   "they had are copied as they were compressed; if nothing has changed, the package gets "
                   "the very bytes that it had. "
                   "A new part needs a content type: in the file [Content_Types].xml, or by --types. The "
                   "package is checked before "
                   "FILE is replaced: it must open, and have no error that it hadn't before. Links in DIR "
                   "aren't followed; what Git "
                   "keeps in it, and DIR/.opctool, don't go into the package.",
                   "opctool pack report -o report.docx\n"
                   "opctool pack report -o report.docx --types types.txt",
                   "",
                   R"({
  "type": "object",
  "required": ["original", "items", "added", "replaced", "removed", "hidden", "dropped", "brokenSignatures"],
  "properties": {
    "original": {"description": "whether nothing has changed, so that the package has the bytes that it had", "type": "boolean"},
    "items": {"description": "how many the package has", "type": "integer"},
    "added": {"description": "items; all of them if DIR doesn't have the original", "type": "array", "items": {"type": "string"}},
    "replaced": {"type": "array", "items": {"type": "string"}},
    "removed": {"type": "array", "items": {"type": "string"}},
    "hidden": {
      "description": "what came back from the original though no file shows it",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["item", "what"],
        "properties": {"item": {"description": "null for bytes that belong to none", "type": ["string", "null"]},
                       "what": {"type": "string"}}
      }
    },
    "dropped": {
      "description": "what the original had hidden and the package doesn't have",
      "type": "array",
      "items": {"$ref": "#/properties/result/properties/hidden/items"}
    },
    "brokenSignatures": {"description": "the parts of signatures that hold no longer", "type": "array", "items": {"type": "string"}}
  }
})"};

} // namespace opctool
