#include "ArchiveFile.hpp"
#include "ArchiveReports.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "RepeatableOption.hpp"

#include <opc/editing/Repacking.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::editing::Repacked;
using opc::editing::RepackingOptions;
using opc::inspection::Archive;

void repack(FileRun& run, RepackingOptions options) {
    options.archive = run.options().reading.zip;
    const Archive package = openArchive(run);
    const Repacked repacked = opc::editing::repack(package, options);
    deliver(run, repacked.archive, package.fileState());
    if (run.wantsJSON()) {
        run.json().add(ordered_json{{"before", package.size()},
                                    {"after", repacked.archive.size()},
                                    {"items", repacked.items},
                                    {"dropped", hiddenToJSON(repacked.dropped)}});
        return;
    }
    remark(run, repacked.dropped, "is left out: ");
    run.printLine(std::to_string(package.size()) + " bytes before, " +
                  std::to_string(repacked.archive.size()) + " after");
}

void declareRepack(CLI::App& command) {
    const auto options = std::make_shared<RepackingOptions>();
    const auto files = addChangedFile(command, REPACK);
    command
        .add_option("--level", options->level, "From 1, the fastest, to 9, the smallest; 0 doesn't compress")
        ->check(CLI::Range(0, 9))
        ->type_name("N")
        ->capture_default_str();
    addRepeatable(
        &command, "--store", options->stored,
        "Don't compress parts with such names, as in '*.png' or '/word/media/*'; * stands for anything "
        "within a segment, ** for anything")
        ->type_name("GLOB");
    command.add_flag("--deterministic", files->options.reading.zip.deterministic,
                     "Write the same bytes for the same contents: items by name, with a fixed time");
    command.callback([files, options] { files->run([&](FileRun& run) { repack(run, *options); }); });
}

} // namespace

const Command REPACK{"repack",
                     "Compress a package anew",
                     declareRepack,
                     "The content types and the relationships of the package come first, by which other "
                     "programs recognise a file. The "
                     "contents stay the same. What stands beside them in the archive is left out and "
                     "reported: comments, bytes between the "
                     "items. What can't be read stays as it is.",
                     "opctool repack report.docx -o small.docx --level 9\n"
                     "opctool repack report.docx --store '*.png' --deterministic",
                     "",
                     R"({
  "type": "object",
  "required": ["before", "after", "items", "dropped"],
  "properties": {
    "before": {"description": "the size of the archive in bytes", "type": "integer"},
    "after": {"type": "integer"},
    "items": {"type": "integer"},
    "dropped": {
      "description": "what the archive had beside its contents",
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

} // namespace opctool
