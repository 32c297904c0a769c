#include "Commands.hpp"
#include "RuleNames.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"
#include "Wrapping.hpp"

#include <opc/inspection/Rule.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace opctool {

namespace {

using namespace opc::inspection;
using nlohmann::ordered_json;

std::string nameOf(Severity severity) {
    return severity == Severity::Error ? "error" : severity == Severity::Warning ? "warning" : "info";
}

std::vector<std::string> profilesOf(const Rule& rule) {
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
            {"profiles", profilesOf(rule)},
            {"standard", rule.standard},
            {"statement", rule.statement},
            {"cause", rule.cause},
            {"writers", rule.writers},
            {"readers", rule.readers},
            {"remedy", rule.remedy}};
}

void printParagraph(const std::string& heading, std::string_view text) {
    if (!text.empty())
        std::cout << '\n' << heading << ":\n" << wrap(std::string(text), 2);
}

void print(const Rule& rule) {
    std::string profiles;
    for (const std::string& name : profilesOf(rule))
        profiles += (profiles.empty() ? "" : ", ") + name;
    std::cout << rule.id << ": " << rule.title << '\n' << nameOf(rule.severity) << "; profiles: " << profiles;
    if (!rule.standard.empty())
        std::cout << "; ECMA-376 Part 2: " << rule.standard;
    std::cout << '\n';
    printParagraph("Rule", rule.statement);
    printParagraph("Cause", rule.cause);
    printParagraph("Written by", rule.writers);
    printParagraph("Readers", rule.readers);
    printParagraph("What to do", rule.remedy);
}

void list(bool json) {
    if (json) {
        ordered_json all = ordered_json::array();
        for (const Rule* rule : rules())
            all.push_back(toJSON(*rule));
        std::cout << all.dump(2) << '\n';
        return;
    }
    Table table({{"RULE"}, {"SEVERITY"}, {"TITLE"}});
    for (const Rule* rule : rules())
        table.addRow({std::string(rule->id), nameOf(rule->severity), std::string(rule->title)});
    table.print(std::cout, {});
}

struct Arguments {
    std::string rule;
    bool json = false;
};

void explain(const Arguments& arguments) {
    if (arguments.rule.empty())
        list(arguments.json);
    else if (arguments.json)
        std::cout << toJSON(*findRule(arguments.rule)).dump(2) << '\n';
    else
        print(*findRule(arguments.rule));
}

void declare(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    command.add_option("RULE", arguments->rule, "The rule's id, as M1.6")->check(isRule())->type_name("");
    command.add_flag("--json", arguments->json, "Print a JSON object, or an array of all");
    command.callback([arguments] { explain(*arguments); });
}

} // namespace

const Command EXPLAIN{"explain", "Explain a rule of check, or list all rules", declare, "",
                      "opctool explain M3.10"};

} // namespace opctool
