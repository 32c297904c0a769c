#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Documents.hpp"

#include <ostream>
#include <string>

namespace opctool {

namespace {

/// A text between single quotes, where colons and brackets have a meaning for _arguments.
std::string quotedForZsh(const std::string& text) {
    std::string result;
    for (const char c : text)
        if (c == '\'')
            result += "'\\''";
        else
            result += (c == ':' || c == '[' || c == ']' || c == '\\' ? "\\" : "") + std::string(1, c);
    return result;
}

std::string actionOf(const OptionText& option) {
    if (!option.choices.empty()) {
        std::string words;
        for (const std::string& choice : option.choices)
            words += (words.empty() ? "" : " ") + choice;
        return "(" + words + ")";
    }
    return option.takesFiles ? option.value == "DIR" ? "_files -/" : "_files" : " ";
}

void printSpecification(std::ostream& out, const OptionText& option) {
    const std::string value = ":" + quotedForZsh(option.value) + ":" + actionOf(option);
    if (option.isArgument()) {
        out << " \\\n                '" << (option.isRepeatable ? "*" : "") << value << "'";
        return;
    }
    for (const std::string& name : option.names)
        out << " \\\n                '" << (option.isRepeatable ? "*" : "") << name
            << (option.isFlag || name.size() == 2 ? "" : "=") << "[" << quotedForZsh(option.description)
            << "]" << (option.isFlag ? "" : value) << "'";
}

} // namespace

void writeZshCompletion(std::ostream& out) {
    out << "#compdef opctool\n\n"
           "_opctool() {\n"
           "    local -a commands\n"
           "    commands=(\n";
    for (const Command* command : allCommands())
        out << "        '" << command->name << ":" << quotedForZsh(command->summary) << "'\n";
    out << "    )\n"
           "    if (( CURRENT == 2 )); then\n"
           "        _describe command commands\n"
           "        _arguments '--help[Print help]' '--version[Print the version]'\n"
           "        return\n"
           "    fi\n"
           "    local command=$words[2]\n"
           "    shift words\n"
           "    (( CURRENT-- ))\n"
           "    case $command in\n";
    for (const Command* command : allCommands()) {
        out << "        " << command->name << ")\n            _arguments -s";
        for (const OptionText& option : optionsOf(*command))
            printSpecification(out, option);
        out << "\n            ;;\n";
    }
    out << "    esac\n"
           "}\n\n"
           "_opctool \"$@\"\n";
}

} // namespace opctool
