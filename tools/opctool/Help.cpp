#include "Help.hpp"

#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Wrapping.hpp"

#include <sstream>

namespace opctool {

namespace {

constexpr std::size_t COLUMN = 24; // where descriptions begin

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

void printEntry(std::ostream& out, const std::string& name, const std::string& description) {
    const std::string begin = "  " + name;
    out << begin;
    const bool fits = widthOf(begin) + 2 <= COLUMN;
    out << (fits ? "" : "\n") << wrap(description, COLUMN, fits ? widthOf(begin) : 0);
}

void printOption(std::ostream& out, const OptionText& option) {
    std::string name = join(option.names);
    if (!option.value.empty())
        name += (name.empty() ? "" : " ") + option.value;
    if (option.isFlag && !option.choices.empty())
        name += "[=N]";
    std::string description = option.description;
    if (!option.choices.empty() && description.find(option.choices.front()) == std::string::npos)
        description += "; one of " + join(option.choices);
    if (!option.initial.empty())
        description += "; without it " + option.initial;
    printEntry(out, name, description);
}

void printOptions(std::ostream& out, const std::vector<OptionText>& options) {
    std::string group;
    for (const OptionText& option : options) {
        if (option.group != group)
            out << '\n' << wrap(option.group + ":", 0);
        group = option.group;
        printOption(out, option);
    }
}

void printCommand(std::ostream& out, const Command& command, const CLI::App& app) {
    const auto options = optionsOf(app);
    out << wrap(std::string(command.summary) + ".", 0) << "\nUsage: " << synopsisOf(command, options) << '\n';
    if (*command.details != '\0')
        out << '\n' << wrap(command.details, 0);
    printOptions(out, options);
    const std::string statuses =
        *command.statuses != '\0' ? command.statuses : "0 success, 2 wrong usage, 3 failure";
    out << '\n' << wrap("Exit status: " + statuses + ".", 0);
    if (*command.examples == '\0')
        return;
    out << "\nExamples:\n";
    std::istringstream lines(command.examples);
    for (std::string line; std::getline(lines, line);)
        out << "  " << line << '\n';
}

void printTool(std::ostream& out, const CLI::App& app) {
    out << wrap(app.get_description(), 0) << "\nUsage: opctool COMMAND [OPTIONS] ARGUMENTS...\n";
    printOptions(out, optionsOf(app));
    out << "\nCommands:\n";
    for (const Command* command : allCommands())
        printEntry(out, command->name, command->summary);
    out << "\nopctool COMMAND --help explains a command.\n";
}

} // namespace

std::string Help::make_help(const CLI::App* app, std::string /*name*/, CLI::AppFormatMode /*mode*/) const {
    std::ostringstream out;
    if (const Command* const command = findCommand(app->get_name()))
        printCommand(out, *command, *app);
    else
        printTool(out, *app);
    return out.str();
}

} // namespace opctool
