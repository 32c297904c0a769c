#include "ArchiveFile.hpp"
#include "BaselineFile.hpp"
#include "Commands.hpp"
#include "Failures.hpp"
#include "Files.hpp"
#include "RepeatableOption.hpp"
#include "RuleNames.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Reports.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;

struct CheckArguments {
    std::vector<std::string> profiles;
    InspectionOptions inspection;
    std::string format = "text";
    std::string failOn = "error";
    std::string baseline;
    std::string sarifRoot;
};

std::unique_ptr<ReportFormat> makeFormat(const CheckArguments& arguments, bool colored) {
    if (arguments.format == "sarif")
        return makeSARIFReport({"opctool", OPCMODEL_VERSION, arguments.sarifRoot});
    if (arguments.format == "html")
        return makeHTMLReport();
    return makeTextReport(colored);
}

void inspectFile(FileRun& run, const CheckArguments& arguments, const std::optional<Baseline>& baseline,
                 InspectedFile& file) {
    const Archive archive = openToInspect(run);
    InspectionOptions options = arguments.inspection;
    options.limits = run.options().reading.zip;
    options.fileName = run.path();
    file.report = inspect(archive, options);
    if (arguments.format == "html")
        file.picture = drawPackage(archive, options.limits);
    if (baseline)
        file.known = baseline->findKnown(toSARIFURI(run.path(), arguments.sarifRoot), file.report);
}

bool countsAsNo(const ReportSummary& summary, const std::string& failOn) {
    std::uint64_t count = 0;
    for (const auto& [name, severity] :
         {std::pair("error", Severity::Error), {"warning", Severity::Warning}, {"info", Severity::Info}})
        if (count += summary.count(severity); failOn == name)
            break;
    return failOn != "never" && count != 0;
}

class Check {
public:
    Check(const CheckArguments& arguments, const Files& files)
        : arguments(arguments), format(makeFormat(arguments, files.options.output.colored)) {
        if (!arguments.baseline.empty())
            baseline = readBaseline(arguments.baseline, arguments.sarifRoot);
    }

    void run(Files& files) {
        files.options.namesFiles = true;
        const auto action = [this](FileRun& run) { check(run); };
        if (files.options.output.format() != OutputOptions::Format::Text)
            files.run(action);
        else
            files.run(action, {[this](std::ostream& output) { format->begin(output); }, format->separator(),
                               [this](std::ostream& output) { format->end(output, summary); }});
    }

private:
    void check(FileRun& run) {
        const auto file = std::make_shared<InspectedFile>();
        file->name = run.path();
        run.whenDone([this, file] { summary.add(*file); });
        try {
            inspectFile(run, arguments, baseline, *file);
        } catch (const opc::Exception& e) {
            file->failure = opc::scanning::describe(e, run.path()).message;
            throw;
        }
        print(run, *file);
        ReportSummary own;
        own.add(*file);
        if (countsAsNo(own, arguments.failOn))
            run.sayNo();
    }

    void print(FileRun& run, const InspectedFile& file) const {
        if (!run.wantsJSON()) {
            format->write(run.out(), file);
            return;
        }
        std::ostringstream text;
        writeJSON(text, file);
        run.json().add(nlohmann::ordered_json::parse(text.str()));
    }

    const CheckArguments& arguments;
    const std::unique_ptr<ReportFormat> format;
    std::optional<Baseline> baseline;
    ReportSummary summary;
};

void declareCheck(CLI::App& command) {
    const auto arguments = std::make_shared<CheckArguments>();
    const auto files = addFiles(command, CHECK);
    addProfiles(command, arguments->profiles);
    addRepeatable(&command, "--rule", arguments->inspection.only, "Check by this rule alone")
        ->check(isRule())
        ->type_name("RULE");
    addRepeatable(&command, "--no-rule", arguments->inspection.never, "Leave this rule out")
        ->check(isRule())
        ->type_name("RULE");
    command
        .add_option("--format", arguments->format,
                    "Of the report: text, json (--json=2), jsonl (--jsonl), sarif, html")
        ->check(CLI::IsMember({"text", "json", "jsonl", "sarif", "html"}))
        ->type_name("NAME");
    command
        .add_option("--baseline", arguments->baseline,
                    "A report of an earlier run, JSON or SARIF: what it names doesn't count")
        ->type_name("FILE");
    command
        .add_option("--fail-on", arguments->failOn,
                    "Exit with 1 from this severity on: error, warning, info, never")
        ->check(CLI::IsMember({"error", "warning", "info", "never"}))
        ->type_name("SEVERITY");
    command
        .add_option("--sarif-root", arguments->sarifRoot,
                    "Name files relative to this folder in a SARIF report")
        ->type_name("DIR");
    command.callback([files, arguments] {
        arguments->inspection.profiles = profilesOf(arguments->profiles);
        if (arguments->format == "json")
            files->options.output.shape = 2;
        else if (arguments->format == "jsonl")
            files->options.output.jsonLines = true;
        Check(*arguments, *files).run(*files);
    });
}

} // namespace

const Command CHECK{
    "check",
    "Find everything in packages that breaks a rule",
    declareCheck,
    "",
    "opctool check report.docx\n"
    "opctool check -r folder --profile all --format html >report.html",
    "0 nothing is found, 1 something is found from the severity of --fail-on on, 3 a file can't be read",
    R"({
  "type": "object",
  "required": ["format", "findings", "unlisted"],
  "properties": {
    "format": {"description": "as type names it", "type": ["string", "null"]},
    "findings": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["rule", "severity", "standard", "part", "item", "relationship", "target", "line", "column", "offset",
                     "message", "hint", "fingerprint", "known"],
        "properties": {
          "rule": {"description": "explain tells more about it", "type": "string"},
          "severity": {"enum": ["error", "warning", "info"]},
          "standard": {"description": "numbers in ECMA-376 Part 2, or the name of another Part", "type": ["string", "null"]},
          "part": {"type": ["string", "null"]},
          "item": {"description": "of the archive, which is no part", "type": ["string", "null"]},
          "relationship": {"description": "its Id", "type": ["string", "null"]},
          "target": {"description": "of the relationship", "type": ["string", "null"]},
          "line": {"type": ["integer", "null"]},
          "column": {"type": ["integer", "null"]},
          "offset": {"description": "of a byte in the file", "type": ["integer", "null"]},
          "message": {"type": "string"},
          "hint": {"description": "what mends it", "type": ["string", "null"]},
          "fingerprint": {"description": "the same as long as the fault is there", "type": "string"},
          "known": {"description": "whether the baseline has it", "type": "boolean"}
        }
      }
    },
    "unlisted": {
      "description": "how many findings there are beyond those listed, by rule",
      "type": "object",
      "additionalProperties": {"type": "integer"}
    }
  }
})"};

} // namespace opctool
