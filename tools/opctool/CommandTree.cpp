#include "CommandTree.hpp"

#include "Command.hpp"
#include "ReadOptions.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace opctool {

namespace {

constexpr const char* ARGUMENTS = "Arguments";

/// The type name of CLI11 is "NAME:CHECK:CHECK"; the check for choices is {a,b}.
void readTypeName(const std::string& typeName, OptionText& text) {
    std::size_t end = typeName.size();
    for (const char* check : {":{", ":FILE", ":INT in", ":SIZE"})
        end = std::min(end, typeName.find(check));
    if (!text.isArgument() && !text.isFlag)
        text.value = typeName.substr(0, end);
    const std::size_t open = typeName.find('{');
    if (open != std::string::npos) {
        std::istringstream choices(typeName.substr(open + 1, typeName.find('}') - open - 1));
        for (std::string choice; std::getline(choices, choice, ',');)
            text.choices.push_back(choice);
    }
    const auto isPath = [](const std::string& word) {
        return word == "FILE" || word == "DIR" || word == "PACKAGE" || word == "BASE";
    };
    text.takesFiles = isPath(text.value) || typeName.find(":FILE") != std::string::npos;
    if (text.value == "TEXT")
        text.value = text.takesFiles ? "FILE" : "NAME";
}

OptionText describe(const CLI::Option& option, const std::string& group) {
    OptionText text;
    for (const std::string& name : option.get_snames())
        text.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        text.names.push_back("--" + name);
    if (text.isArgument())
        text.value = option.get_name(true, false);
    text.isFlag = !text.isArgument() && option.get_items_expected_max() == 0;
    text.isFlag = text.isFlag || (!text.isArgument() && option.get_items_expected_min() == 0);
    readTypeName(option.get_type_name(), text);
    text.initial = option.get_default_str();
    text.description = option.get_description();
    text.group = text.isArgument() ? ARGUMENTS : group.empty() ? option.get_group() : group;
    text.isRequired = option.get_required();
    text.isRepeatable = option.get_items_expected_max() > 1;
    return text;
}

void collect(const CLI::App& app, const std::string& group, std::vector<OptionText>& all) {
    for (const CLI::Option* option : app.get_options())
        if (group.empty() || option != app.get_help_ptr())
            all.push_back(describe(*option, group));
    for (const CLI::App* nested : app.get_subcommands({}))
        if (nested->get_name().empty())
            collect(*nested, nested->get_description(), all);
}

} // namespace

std::vector<OptionText> optionsOf(const CLI::App& app) {
    std::vector<OptionText> all;
    collect(app, {}, all);
    std::vector<std::string> groups{ARGUMENTS};
    for (const OptionText& option : all)
        if (std::find(groups.begin(), groups.end(), option.group) == groups.end())
            groups.push_back(option.group);
    const auto limits = std::find(groups.begin(), groups.end(), LIMITS_GROUP);
    if (limits != groups.end())
        std::rotate(limits, limits + 1, groups.end()); // what is needed least stands last
    const auto rank = [&groups](const OptionText& option) {
        return std::find(groups.begin(), groups.end(), option.group) - groups.begin();
    };
    std::stable_sort(all.begin(), all.end(), [&rank](const OptionText& left, const OptionText& right) {
        return rank(left) < rank(right);
    });
    return all;
}

std::vector<OptionText> optionsOf(const Command& command) {
    CLI::App app;
    command.declare(app);
    return optionsOf(app);
}

std::string synopsisOf(const Command& command, const std::vector<OptionText>& options) {
    std::string text = std::string("opctool ") + command.name + " [OPTIONS]";
    for (const OptionText& option : options)
        if (option.isArgument()) {
            const std::string value = option.value + (option.isRepeatable ? "..." : "");
            text += " " + (option.isRequired ? value : "[" + value + "]");
        }
    return text;
}

} // namespace opctool
