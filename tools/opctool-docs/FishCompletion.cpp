#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Documents.hpp"

#include <ostream>
#include <string>

namespace opctool {

namespace {

std::string quotedForFish(const std::string& text) {
    std::string result = "'";
    for (const char c : text)
        result += (c == '\'' || c == '\\' ? "\\" : "") + std::string(1, c);
    return result + "'";
}

std::string wordsOf(const OptionText& option) {
    std::string words;
    for (const std::string& choice : option.choices)
        words += (words.empty() ? "" : " ") + choice;
    return quotedForFish(words);
}

void printOption(std::ostream& out, const Command& command, const OptionText& option) {
    if (option.isArgument() && option.choices.empty())
        return; // fish completes files itself
    out << "complete -c opctool -n '__fish_seen_subcommand_from " << command.name << "'";
    for (const std::string& name : option.names)
        out << (name.size() == 2 ? " -s " : " -l ") << name.substr(name.size() == 2 ? 1 : 2);
    if (option.isArgument())
        out << " -f -a " << wordsOf(option);
    else if (!option.isFlag)
        out << (option.takesFiles ? " -r" : " -x");
    if (!option.isArgument() && !option.isFlag && !option.choices.empty())
        out << " -a " << wordsOf(option);
    out << " -d " << quotedForFish(option.description) << '\n';
}

} // namespace

void writeFishCompletion(std::ostream& out) {
    out << "# Completion of opctool for fish.\n\n"
           "complete -c opctool -n __fish_use_subcommand -f\n"
           "complete -c opctool -n __fish_use_subcommand -l version -d 'Print the version'\n"
           "complete -c opctool -n __fish_use_subcommand -l help -s h -d 'Print help'\n";
    for (const Command* command : allCommands()) {
        out << "complete -c opctool -n __fish_use_subcommand -a " << command->name << " -d "
            << quotedForFish(command->summary) << '\n';
        for (const OptionText& option : optionsOf(*command))
            printOption(out, *command, option);
    }
}

} // namespace opctool
