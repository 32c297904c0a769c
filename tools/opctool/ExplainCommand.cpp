#include "Commands.hpp"
#include "Envelope.hpp"
#include "FileRun.hpp"
#include "JSONOutput.hpp"
#include "OutputOptions.hpp"
#include "RuleNames.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"
#include "Wrapping.hpp"

#include <opc/editing/Mending.hpp>
#include <opc/inspection/Rule.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;
using nlohmann::ordered_json;

std::string nameOf(Severity severity) {
    return severity == Severity::Error ? "error" : severity == Severity::Warning ? "warning" : "info";
}

std::vector<std::string> namesOfProfiles(const Rule& rule) {
    std::vector<std::string> names;
    for (const auto& [bit, name] : {std::pair(OPC, "opc"), {SECURITY, "security"}, {OFFICE, "office"}})
        if ((rule.profiles & bit) != 0)
            names.emplace_back(name);
    return names;
}

ordered_json toJSON(const Rule& rule) {
    return {{"rule", rule.id},
            {"title", rule.title},
            {"severity", nameOf(rule.severity)},
            {"profiles", namesOfProfiles(rule)},
            {"standard", rule.standard},
            {"statement", rule.statement},
            {"cause", rule.cause},
            {"writers", rule.writers},
            {"readers", rule.readers},
            {"remedy", rule.remedy},
            {"fix", opc::editing::mendsOf(rule.id)}};
}

std::vector<const Rule*> allRules() {
    return {rules().begin(), rules().end()};
}

ordered_json toJSONArray(const std::vector<const Rule*>& all) {
    ordered_json array = ordered_json::array();
    for (const Rule* rule : all)
        array.push_back(toJSON(*rule));
    return array;
}

void printParagraph(const std::string& heading, std::string_view text) {
    if (!text.empty())
        std::cout << '\n' << heading << ":\n" << wrap(std::string(text), 2);
}

void print(const Rule& rule) {
    std::string profiles;
    for (const std::string& name : namesOfProfiles(rule))
        profiles += (profiles.empty() ? "" : ", ") + name;
    std::cout << rule.id << ": " << rule.title << '\n' << nameOf(rule.severity) << "; profiles: " << profiles;
    if (!rule.standard.empty()) // numbers, or the name of another Part
        std::cout << (rule.standard.substr(0, 4) == "ECMA" ? "; " : "; ECMA-376 Part 2: ") << rule.standard;
    std::cout << '\n';
    printParagraph("Rule", rule.statement);
    printParagraph("Cause", rule.cause);
    printParagraph("Written by", rule.writers);
    printParagraph("Readers", rule.readers);
    printParagraph("What to do", rule.remedy);
    printParagraph("What fix does", opc::editing::mendsOf(rule.id));
}

void list() {
    Table table({{"RULE"}, {"SEVERITY"}, {"TITLE"}});
    for (const Rule* rule : rules())
        table.addRow({std::string(rule->id), nameOf(rule->severity), std::string(rule->title)});
    table.print(std::cout, {});
}

struct ExplainArguments {
    std::string rule;
    OutputOptions output;
};

/// In shape 1 a single rule stands alone.
void printJSON(const std::vector<const Rule*>& found, const OutputOptions& options) {
    if (!options.hasEnvelope()) {
        std::cout << (found.size() == 1 ? toJSON(*found.front()) : toJSONArray(found)).dump(2) << '\n';
        return;
    }
    JSONOutput output(std::cout,
                      options.jsonLines ? JSONOutput::Layout::OneLine : JSONOutput::Layout::Indented);
    beginEnvelope(output, EXPLAIN.name, {});
    output.add(toJSONArray(found));
    endEnvelope(output, 0, {}, nullptr);
}

void explain(const ExplainArguments& arguments) {
    const bool isJSON = arguments.output.format() != OutputOptions::Format::Text;
    if (arguments.rule.empty() && !isJSON)
        return list();
    const std::vector<const Rule*> found = // several check one number
        arguments.rule.empty() ? allRules() : findRules(arguments.rule);
    if (isJSON)
        return printJSON(found, arguments.output);
    for (const Rule* rule : found) {
        std::cout << (rule == found.front() ? "" : "\n");
        print(*rule);
    }
}

void declareExplain(CLI::App& command) {
    const auto arguments = std::make_shared<ExplainArguments>();
    command.add_option("RULE", arguments->rule, "The rule's id, as M1.6, or a number of the standard")
        ->check(isRule())
        ->type_name("");
    addJSONOptions(command, arguments->output);
    command.callback([arguments] { explain(*arguments); });
}

} // namespace

const Command EXPLAIN{
    "explain", "Explain a rule of check, or list all rules", declareExplain, "", "opctool explain M3.10", "",
    R"({
  "type": "array",
  "items": {
    "type": "object",
    "required": ["rule", "title", "severity", "profiles", "standard", "statement", "cause", "writers", "readers", "remedy", "fix"],
    "properties": {
      "rule": {"description": "its id, which never changes", "type": "string"},
      "title": {"type": "string"},
      "severity": {"description": "the highest of its findings", "enum": ["error", "warning", "info"]},
      "profiles": {"type": "array", "items": {"enum": ["opc", "security", "office"]}},
      "standard": {"description": "numbers in ECMA-376 Part 2, or the name of another Part; empty beyond the standard", "type": "string"},
      "statement": {"type": "string"},
      "cause": {"description": "how packages come to break it", "type": "string"},
      "writers": {"description": "who writes such packages; empty if nobody is known", "type": "string"},
      "readers": {"description": "what readers do", "type": "string"},
      "remedy": {"type": "string"},
      "fix": {"description": "what the command fix does about it; empty if it can't mend it", "type": "string"}
    }
  }
})"};

} // namespace opctool
