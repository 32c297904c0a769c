#include "ChangeText.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"
#include "SignatureOption.hpp"

#include <opc/editing/Cleaning.hpp>
#include <opc/editing/Editor.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::editing;
using nlohmann::ordered_json;
using opc::inspection::Archive;
using opc::inspection::Finding;
using opc::interfaces::OpenMode;

struct CleanArguments {
    CleaningOptions what{false, false, false, false};
    bool all = false;

    CleaningOptions chosen() const {
        const bool isNone = !what.core && !what.extended && !what.custom && !what.thumbnails;
        return all || isNone ? CleaningOptions() : what;
    }
};

std::string nameOf(const Finding& finding) {
    const std::string& name = finding.place.part.empty() ? finding.place.item : finding.place.part;
    return name + (finding.place.relationship.empty() ? "" : '#' + finding.place.relationship);
}

void print(FileRun& run, const std::vector<Change>& changes, const std::vector<Finding>& remaining) {
    for (const Change& change : changes)
        run.printLine(describe(change));
    for (const Finding& finding : remaining) {
        const std::string name = nameOf(finding);
        run.printLine("remains: " + std::string(finding.rule->id) + ' ' + name + (name.empty() ? "" : ": ") +
                      finding.message);
    }
}

ordered_json toResult(const Editor& editor, const std::vector<Finding>& remaining, bool isDryRun) {
    ordered_json changes = ordered_json::array();
    for (const Change& change : editor.changes())
        changes.push_back(changeToJSON(change));
    ordered_json left = ordered_json::array();
    for (const Finding& finding : remaining)
        left.push_back(
            {{"rule", finding.rule->id}, {"place", nameOf(finding)}, {"message", finding.message}});
    return {{"changes", changes},
            {"remaining", left},
            {"brokenSignatures", editor.brokenSignatures()},
            {"dryRun", isDryRun}};
}

void clean(FileRun& run, const CleanArguments& arguments) {
    const RunOptions& how = run.options();
    OpenedPackage package(run, OpenMode::ReadWrite);
    const Archive archive = package.openArchive();
    Editor editor(*package);
    opc::editing::clean(editor, arguments.chosen());
    if (!how.dryRun && !how.breakSignatures)
        refuseToBreak(editor.brokenSignatures());
    const std::vector<Finding> remaining = findMetadata(archive, editor.changes(), how.reading.zip);
    package.save();
    if (run.wantsJSON())
        run.json().add(toResult(editor, remaining, how.dryRun));
    else
        print(run, editor.changes(), remaining);
    if (how.dryRun && !how.breakSignatures)
        refuseToBreak(editor.brokenSignatures());
}

void declareClean(CLI::App& command) {
    const auto arguments = std::make_shared<CleanArguments>();
    const auto files = addChangedFile(command, CLEAN);
    CleaningOptions& what = arguments->what;
    command.add_flag("--core", what.core, "Take the core properties out: title, creator, times …");
    command.add_flag("--extended", what.extended,
                     "Take the extended properties out: company, manager, program …");
    command.add_flag("--custom", what.custom, "Take the custom properties out");
    command.add_flag("--thumbnail", what.thumbnails, "Take previews out");
    command.add_flag("--all", arguments->all, "Take all of these out; the same as none of these options");
    addSignatureOption(command, files->options);
    command.callback([files, arguments] { files->run([&](FileRun& run) { clean(run, *arguments); }); });
}

} // namespace

const Command CLEAN{"clean",
                    "Take metadata of the package out, and say what remains inside parts",
                    declareClean,
                    "Properties and previews go with their parts, relationships and content types. What "
                    "tells about people inside parts "
                    "stays, and is listed as far as check knows it: comments and their authors, tracked "
                    "changes, Exif data, embedded "
                    "packages, printers, custom XML. Texts and images can tell more.",
                    "opctool clean report.docx -o public.docx\n"
                    "opctool clean report.docx --core --thumbnail --dry-run",
                    "",
                    R"({
  "type": "object",
  "required": ["changes", "remaining", "brokenSignatures", "dryRun"],
  "properties": {
    "changes": {
      "description": "as those of other commands: kind, place, name, before, after, text",
      "type": "array",
      "items": {"type": "object"}
    },
    "brokenSignatures": {
      "description": "the parts of the signatures that don't hold any more",
      "type": "array",
      "items": {"type": "string"}
    },
    "dryRun": {"description": "whether nothing was written", "type": "boolean"},
    "remaining": {
      "description": "what else tells about people, as far as check knows it",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["rule", "place", "message"],
        "properties": {
          "rule": {"description": "explain tells more about it", "type": "string"},
          "place": {"type": "string"},
          "message": {"type": "string"}
        }
      }
    }
  }
})"};

} // namespace opctool
