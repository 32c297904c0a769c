#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "RepeatableOption.hpp"
#include "Wildcards.hpp"

#include <opc/inspection/External.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace opctool {

namespace {

using opc::inspection::External;
using opc::inspection::ExternalEffect;
using opc::inspection::Externals;
using opc::inspection::toString;

struct ExternalArguments {
    std::vector<std::string> effects, places, allowed;
    std::string failOn = "never";
};

bool has(const std::vector<std::string>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isWanted(const External& external, const ExternalArguments& arguments) {
    if (!arguments.effects.empty() && !has(arguments.effects, toString(external.effect)))
        return false;
    if (!arguments.places.empty() && !has(arguments.places, toString(external.place)))
        return false;
    return std::none_of(
        arguments.allowed.begin(), arguments.allowed.end(),
        [&external](const std::string& pattern) { return matchesWildcards(pattern, external.target); });
}

bool countsAsNo(const External& external, const std::string& failOn) {
    return failOn == "any" || (failOn == "loads" && external.effect == ExternalEffect::LoadsOnOpen);
}

void printJSON(FileRun& run, const std::vector<External>& rows) {
    JSONOutput& output = run.json();
    output.beginArray();
    for (const External& row : rows)
        output.add({{"effect", toString(row.effect)},
                    {"place", toString(row.place)},
                    {"source", row.source},
                    {"id", row.id},
                    {"type", row.type},
                    {"target", row.target}});
    output.end();
}

void printTable(FileRun& run, const std::vector<External>& rows) {
    Table table({{"EFFECT"}, {"PLACE"}, {"SOURCE"}, {"ID"}, {"TYPE"}, {"TARGET"}});
    for (const External& row : rows)
        table.addRow({std::string(toString(row.effect)), std::string(toString(row.place)), row.source, row.id,
                      row.type.substr(row.type.rfind('/') + 1), row.target});
    table.print(run.out(), run.tableStyle());
}

void external(FileRun& run, const ExternalArguments& arguments) {
    Externals externals = opc::inspection::listExternals(openArchive(run), run.options().reading.zip);
    for (const auto& [part, reason] : externals.unread) {
        run.addHidden({part, 0, reason, "its further relationships aren't listed", ""});
        std::string remark = part;
        remark.append(": its further relationships aren't listed: ").append(reason);
        run.remark(remark);
    }
    std::vector<External>& rows = externals.found;
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&](const External& row) { return !isWanted(row, arguments); }),
               rows.end());
    if (run.wantsJSON())
        printJSON(run, rows);
    else
        printTable(run, rows);
    const bool mayMiss = !externals.unread.empty() && arguments.failOn != "never";
    if (mayMiss || std::any_of(rows.begin(), rows.end(),
                               [&](const External& row) { return countsAsNo(row, arguments.failOn); }))
        run.sayNo();
}

void declareExternal(CLI::App& command) {
    const auto arguments = std::make_shared<ExternalArguments>();
    const auto files = addFiles(command, EXTERNAL);
    addRepeatable(&command, "--effect", arguments->effects, "List only these: loads, click, other")
        ->check(CLI::IsMember({"loads", "click", "other"}))
        ->type_name("NAME");
    addRepeatable(&command, "--place", arguments->places, "List only these: web, share, file, mail, other")
        ->check(CLI::IsMember({"web", "share", "file", "mail", "other"}))
        ->type_name("NAME");
    addRepeatable(&command, "--allow", arguments->allowed,
                  "Leave out targets that match this pattern, such as 'https://example.com/*'")
        ->type_name("GLOB");
    command
        .add_option("--fail-on", arguments->failOn,
                    "Exit with 1 if one that is listed loads on opening, or if any is, and where "
                    "relationships can't be "
                    "read: loads, any, never (the default)")
        ->check(CLI::IsMember({"loads", "any", "never"}))
        ->type_name("NAME");
    command.callback(
        [files, arguments] { files->run([&arguments](FileRun& run) { external(run, *arguments); }); });
}

} // namespace

const Command EXTERNAL{
    "external",
    "List what packages load from outside, and where their links lead",
    declareExternal,
    "Nothing is fetched. The effect is \"loads\" if opening the document is enough for an "
    "office program to fetch the "
    "target or to ask for it, \"click\" for hyperlinks, and \"other\" for types that "
    "aren't known. The place is web, "
    "share (a file server), file, mail or other. Fields and formulas that load without a "
    "relationship are found by "
    "check --profile security.",
    "opctool external report.docx\n"
    "opctool external --fail-on loads --allow 'https://example.com/*' *.docx\n"
    "opctool external -r folder --effect loads --place web --jsonl",
    "0 nothing is listed that --fail-on names, 1 something is, or relationships can't be read, "
    "3 a file can't be read",
    R"({
  "type": "array",
  "items": {
    "type": "object",
    "required": ["effect", "place", "source", "id", "type", "target"],
    "properties": {
      "effect": {"enum": ["loads", "click", "other"]},
      "place": {"enum": ["web", "share", "file", "mail", "other"]},
      "source": {"description": "a part name, or / for the package", "type": "string"},
      "id": {"type": "string"},
      "type": {"type": "string"},
      "target": {"description": "as it is written", "type": "string"}
    }
  }
})"};

} // namespace opctool
