#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Documents.hpp"

#include <ostream>
#include <string>
#include <vector>

namespace opctool {

namespace {

void append(std::string& text, const std::vector<std::string>& words) {
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
}

/// `words ls:--color "auto always never"` for each option that takes one of some words.
void printChoices(std::ostream& out, const Command& command, const OptionText& option) {
    if (option.choices.empty() || option.isArgument())
        return;
    out << "        ";
    for (std::size_t i = 0; i < option.names.size(); ++i)
        out << (i == 0 ? "" : "|") << command.name << ":" << option.names[i];
    std::string words;
    append(words, option.choices);
    out << ") words=\"" << words << "\" ;;\n";
}

void printNames(std::ostream& out, const Command& command) {
    std::string names;
    std::string words;
    for (const OptionText& option : optionsOf(command)) {
        append(names, option.names);
        if (option.isArgument())
            append(words, option.choices);
    }
    out << "        " << command.name << ") options=\"" << names << '"';
    if (!words.empty())
        out << " words=\"" << words << '"';
    out << " ;;\n";
}

} // namespace

void writeBashCompletion(std::ostream& out) {
    std::string names;
    for (const Command* command : allCommands())
        append(names, {command->name});
    out << "# Completion of opctool for bash.\n\n"
           "_opctool() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD-1]} options= words=\n"
           "    COMPREPLY=()\n"
           "    # --color=al comes as three words.\n"
           "    if [[ $current == = ]]; then\n"
           "        current=\n"
           "    elif [[ $option == = ]]; then\n"
           "        option=${COMP_WORDS[COMP_CWORD-2]}\n"
           "    fi\n"
           "    if (( COMP_CWORD == 1 )); then\n"
           "        COMPREPLY=($(compgen -W \"" +
               names +
               " --help --version\" -- \"$current\"))\n"
               "        return\n"
               "    fi\n"
               "    case ${COMP_WORDS[1]}:$option in\n";
    for (const Command* command : allCommands())
        for (const OptionText& option : optionsOf(*command))
            if (!option.isFlag)
                printChoices(out, *command, option);
    out << "    esac\n"
           "    if [[ -n $words ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "        return\n"
           "    fi\n"
           "    case ${COMP_WORDS[1]} in\n";
    for (const Command* command : allCommands())
        printNames(out, *command);
    out << "    esac\n"
           "    if [[ $current == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
           "    elif [[ -n $words ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    else\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "}\n\n"
           "complete -o filenames -F _opctool opctool\n";
}

} // namespace opctool
