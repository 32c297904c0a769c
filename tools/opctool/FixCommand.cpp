#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "JSONText.hpp"
#include "MendingText.hpp"
#include "RepeatableOption.hpp"
#include "RuleNames.hpp"
#include "SignatureOption.hpp"

#include <opc/editing/Mending.hpp>
#include <opc/inspection/Format.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;
using nlohmann::ordered_json;
using opc::editing::Mended;
using opc::editing::Mending;

struct FixArguments {
    std::vector<std::string> profiles;
    std::vector<std::string> only, never;
};

ordered_json toJSON(const Rule& rule, const Place& place, const std::string& message) {
    return {{"rule", rule.id},
            {"part", textOrNull(place.part)},
            {"item", textOrNull(place.item)},
            {"relationship", textOrNull(place.relationship)},
            {"message", message}};
}

ordered_json toJSON(const Mending& mending, const std::vector<std::string>& broken, bool isDryRun) {
    ordered_json changes = ordered_json::array();
    for (const Mended& one : mending.mended)
        changes.push_back(toJSON(*one.rule, one.place, one.what));
    ordered_json left = ordered_json::array();
    for (const Finding& finding : mending.left) {
        left.push_back(toJSON(*finding.rule, finding.place, finding.message));
        left.back()["why"] = textOrNull(finding.hint);
    }
    return {{"changes", changes}, {"left", left}, {"brokenSignatures", broken}, {"dryRun", isDryRun}};
}

/// An info is told only about a file that is no package: it says why nothing in there can be mended.
std::vector<Finding> toldAsLeft(const Mending& mending) {
    std::vector<Finding> told = mending.left;
    if (detectFormat(mending.archive).isPackage)
        told.erase(std::remove_if(told.begin(), told.end(),
                                  [](const Finding& finding) { return finding.severity == Severity::Info; }),
                   told.end());
    return told;
}

void print(FileRun& run, const Mending& mending) {
    for (const Mended& one : mending.mended)
        run.printLine(describePlace(*one.rule, one.place) + one.what);
    for (const Finding& finding : toldAsLeft(mending))
        run.printLine("left: " + describeLeft(finding));
}

void fix(FileRun& run, const FixArguments& arguments) {
    InspectionOptions options;
    options.profiles = profilesOf(arguments.profiles);
    options.only = arguments.only;
    options.never = arguments.never;
    options.limits = run.options().reading.zip;
    options.fileName = run.path();
    const Mending mending = opc::editing::mend(openToInspect(run), options);
    const RunOptions& how = run.options();
    const std::vector<std::string> broken = mending.signatures.brokenBy(mending.changes());
    if (!how.dryRun && !how.breakSignatures)
        refuseToBreak(broken);
    if (!run.target().empty() || !mending.mended.empty())
        deliver(run, mending.archive, mending.original);
    if (run.wantsJSON())
        run.json().add(toJSON(mending, broken, how.dryRun));
    else
        print(run, mending);
    if (how.dryRun && !how.breakSignatures)
        refuseToBreak(broken);
    if (!toldAsLeft(mending).empty())
        run.sayNo();
}

void declareFix(CLI::App& command) {
    const auto arguments = std::make_shared<FixArguments>();
    const auto files = addChangedFile(command, FIX);
    addProfiles(command, arguments->profiles);
    addRepeatable(&command, "--rule", arguments->only, "Mend what breaks this rule alone")
        ->check(isRule())
        ->type_name("RULE");
    addRepeatable(&command, "--no-rule", arguments->never, "Leave this rule out")
        ->check(isRule())
        ->type_name("RULE");
    addSignatureOption(command, files->options);
    command.callback([files, arguments] { files->run([&](FileRun& run) { fix(run, *arguments); }); });
}

} // namespace

const Command FIX{
    "fix",
    "Mend what check finds, as far as that is certain",
    declareFix,
    "It takes the rules that check takes by the same options; what check calls an info is only mended if "
    "--rule names it. "
    "explain tells what fix does about a rule. Each change is a line, and so is what is left and why.",
    "opctool fix report.docx --dry-run\n"
    "opctool fix report.docx -o mended.docx\n"
    "opctool fix report.docx --rule SEC-17 --rule SEC-35",
    "0 no error and no warning is left, 1 something is left, 3 the file can't be read or written",
    R"({
  "type": "object",
  "required": ["changes", "left", "brokenSignatures", "dryRun"],
  "properties": {
    "brokenSignatures": {
      "description": "the parts of the signatures that don't hold any more",
      "type": "array",
      "items": {"type": "string"}
    },
    "dryRun": {"description": "whether nothing was written", "type": "boolean"},
    "changes": {
      "description": "what was mended",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["rule", "part", "item", "relationship", "message"],
        "properties": {
          "rule": {"description": "that was broken", "type": "string"},
          "part": {"type": ["string", "null"]},
          "item": {"description": "of the archive, which is no part", "type": ["string", "null"]},
          "relationship": {"description": "its Id", "type": ["string", "null"]},
          "message": {"description": "what was done", "type": "string"}
        }
      }
    },
    "left": {
      "description": "what check still finds by the same options",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["rule", "part", "item", "relationship", "message", "why"],
        "properties": {
          "rule": {"type": "string"},
          "part": {"type": ["string", "null"]},
          "item": {"type": ["string", "null"]},
          "relationship": {"type": ["string", "null"]},
          "message": {"type": "string"},
          "why": {"description": "why it isn't mended", "type": ["string", "null"]}
        }
      }
    }
  }
})"};

} // namespace opctool
