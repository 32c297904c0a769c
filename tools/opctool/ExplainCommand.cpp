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

template <typename Rules>
ordered_json toJSONArray(const Rules& all) {
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
        std::cout << toJSONArray(rules()).dump(2) << '\n';
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
        return list(arguments.json);
    const std::vector<const Rule*> found = findRules(arguments.rule); // several check one number
    if (arguments.json) {
        std::cout << (found.size() == 1 ? toJSON(*found.front()) : toJSONArray(found)).dump(2) << '\n';
        return;
    }
    for (const Rule* rule : found) {
        std::cout << (rule == found.front() ? "" : "\n");
        print(*rule);
    }
}

void declare(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    command.add_option("RULE", arguments->rule, "The rule's id, as M1.6, or a number of the standard")
        ->check(isRule())
        ->type_name("");
    command.add_flag("--json", arguments->json, "Print a JSON object, or an array of all");
    command.callback([arguments] { explain(*arguments); });
}

} // namespace

const Command EXPLAIN{"explain", "Explain a rule of check, or list all rules", declare, "",
                      "opctool explain M3.10"};

} // namespace opctool
