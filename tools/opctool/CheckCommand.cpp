#include "BaselineFile.hpp"
#include "Commands.hpp"
#include "Messages.hpp"
#include "RepeatableOption.hpp"
#include "RuleNames.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Reports.hpp>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;

struct Arguments {
    std::vector<std::string> packages;
    std::vector<std::string> profiles;
    InspectionOptions inspection;
    std::string format = "text";
    std::string failOn = "error";
    std::string baseline;
    std::string sarifRoot;
};

std::unique_ptr<ReportFormat> makeFormat(const Arguments& arguments) {
    if (arguments.format == "json")
        return makeJSONReport();
    if (arguments.format == "jsonl")
        return makeJSONLinesReport();
    if (arguments.format == "sarif")
        return makeSARIFReport({"opctool", OPCMODEL_VERSION, arguments.sarifRoot});
    if (arguments.format == "html")
        return makeHTMLReport();
    return makeTextReport();
}

unsigned profilesOf(const std::vector<std::string>& names) {
    unsigned profiles = 0;
    for (const std::string& name : names)
        profiles |= name == "opc"        ? OPC
                    : name == "security" ? SECURITY
                    : name == "office"   ? OFFICE
                                         : EVERY_PROFILE;
    return names.empty() ? unsigned{OPC} : profiles;
}

InspectedFile inspectFile(const Arguments& arguments, const std::optional<Baseline>& baseline,
                          const std::string& path) {
    InspectedFile file;
    file.name = path;
    try {
        const Archive archive(std::filesystem::path(path), arguments.inspection.limits);
        InspectionOptions options = arguments.inspection;
        options.fileName = path;
        file.report = inspect(archive, options);
        if (arguments.format == "html")
            file.picture = drawPackage(archive, options.limits);
        if (baseline)
            file.known = baseline->findKnown(toSARIFURI(path, arguments.sarifRoot), file.report);
    } catch (const opc::Exception& e) {
        file.failure = e.what();
    }
    return file;
}

bool countsAsNo(const ReportSummary& summary, const std::string& failOn) {
    std::uint64_t count = 0;
    for (const auto& [name, severity] :
         {std::pair("info", Severity::Info), {"warning", Severity::Warning}, {"error", Severity::Error}})
        if (count += summary.count(severity); failOn == name)
            break;
    return failOn != "never" && count != 0;
}

void check(const Arguments& arguments) {
    std::optional<Baseline> baseline;
    if (!arguments.baseline.empty())
        baseline = readBaseline(arguments.baseline, arguments.sarifRoot);
    ReportWriter writer(std::cout, makeFormat(arguments));
    for (const std::string& package : arguments.packages)
        writer.add(inspectFile(arguments, baseline, package));
    writer.end();
    if (!writer.summary().failures().empty())
        throw opc::Exception("not every file could be read");
    if (countsAsNo(writer.summary(), arguments.failOn))
        throw AnswerIsNo();
}

} // namespace

void addCheckCommand(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand("check", "Find everything in packages that breaks a rule");
    command->add_option("PACKAGE", arguments->packages, "The packages' files")->required();
    addRepeatable(command, "--profile", arguments->profiles,
                  "Check by these rules: opc (the default), security, office, all")
        ->check(CLI::IsMember({"opc", "security", "office", "all"}));
    addRepeatable(command, "--rule", arguments->inspection.only, "Check by this rule alone")->check(isRule());
    addRepeatable(command, "--no-rule", arguments->inspection.never, "Leave this rule out")->check(isRule());
    command->add_option("--format", arguments->format, "Of the report: text, json, jsonl, sarif, html")
        ->check(CLI::IsMember({"text", "json", "jsonl", "sarif", "html"}));
    command->add_option("--baseline", arguments->baseline,
                        "A report of an earlier run, JSON or SARIF: what it names doesn't count");
    command
        ->add_option("--fail-on", arguments->failOn,
                     "Exit with 1 from this severity on: error, warning, info, never")
        ->check(CLI::IsMember({"error", "warning", "info", "never"}));
    command->add_option("--sarif-root", arguments->sarifRoot,
                        "Name files relative to this folder in a SARIF report");
    command->callback([arguments] {
        arguments->inspection.profiles = profilesOf(arguments->profiles);
        check(*arguments);
    });
}

} // namespace opctool
