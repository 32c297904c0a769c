#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Documents.hpp"

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace opctool {

namespace {

/// A text without what mdoc takes for a command: backslashes, quotes, and dots where a line begins.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '\\' ? "\\e" : c == '"' ? "\\(dq" : std::string(1, c);
    if (!result.empty() && (result.front() == '.' || result.front() == '\''))
        result.insert(0, "\\&");
    return result;
}

void printHead(std::ostream& out, const std::string& name, const std::string& summary) {
    std::string title = name;
    for (char& c : title)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    out << ".Dd $Mdocdate$\n.Dt " << title << " 1\n.Os\n.Sh NAME\n.Nm " << name << "\n.Nd "
        << escaped(summary) << '\n';
}

void printItem(std::ostream& out, const OptionText& option) {
    out << ".It ";
    if (option.isArgument()) {
        out << "Ar " << option.value << '\n';
    } else {
        for (std::size_t i = 0; i < option.names.size(); ++i) // the macro writes one of the hyphens itself
            out << (i == 0 ? "Fl " : " , Fl ") << option.names[i].substr(1);
        if (!option.value.empty())
            out << " Ar " << option.value;
        out << '\n';
    }
    out << escaped(option.description) << ".\n";
    if (!option.choices.empty()) {
        out << "One of";
        for (const std::string& choice : option.choices)
            out << " \"" << escaped(choice) << '"' << (choice == option.choices.back() ? "" : ",");
        out << ".\n";
    }
    if (!option.initial.empty())
        out << "Without it: " << escaped(option.initial) << ".\n";
}

void printOptions(std::ostream& out, const std::vector<OptionText>& options) {
    std::string group;
    for (const OptionText& option : options) {
        if (option.group != group)
            out << (group.empty() ? "" : ".El\n") << ".Ss " << escaped(option.group)
                << "\n.Bl -tag -width Ds\n";
        group = option.group;
        printItem(out, option);
    }
    out << (group.empty() ? "" : ".El\n");
}

void printExamples(std::ostream& out, const std::string& examples) {
    if (examples.empty())
        return;
    out << ".Sh EXAMPLES\n.Bd -literal -offset indent\n";
    std::istringstream lines(examples);
    for (std::string line; std::getline(lines, line);)
        out << escaped(line) << '\n';
    out << ".Ed\n";
}

} // namespace

void writeManPage(std::ostream& out) {
    printHead(out, "opctool", "show, check, change and sign packages in the Open Packaging Conventions");
    out << ".Sh SYNOPSIS\n.Nm\n.Ar command\n.Op Ar options\n.Ar arguments ...\n.Sh DESCRIPTION\n"
           "A package is a file such as docx, xlsx, pptx, 3mf, xps or nupkg.\n"
           "It holds parts, content types, relationships, core properties and signatures (ECMA-376 Part 2).\n"
           ".Pp\n.Nm\n.Fl -help\nlists the commands, and\n.Nm\n.Fl -version\nprints the version.\n"
           "The commands are:\n.Bl -tag -width countersign\n";
    for (const Command* command : allCommands())
        out << ".It Xr opctool-" << command->name << " 1\n" << escaped(command->summary) << ".\n";
    out << ".El\n.Sh ENVIRONMENT\n.Bl -tag -width NO_COLOR\n"
           ".It Ev NO_COLOR\nIf it is set, nothing is coloured without\n.Fl -color Ns = Ns Cm always .\n"
           ".It Ev TERM\nIf it is dumb, neither.\n"
           ".It Ev TMPDIR\nThe folder for large packages from standard input.\n.El\n"
           ".Sh EXIT STATUS\n0 success, 1 the answer is no, 2 wrong usage, 3 failure.\n"
           "Of several packages, the worst counts: 3 before 1 before 0.\n";
}

void writeManPage(std::ostream& out, const Command& command) {
    const auto options = optionsOf(command);
    printHead(out, std::string("opctool-") + command.name, command.summary);
    out << ".Sh SYNOPSIS\n.Nm opctool\n.Cm " << command.name << "\n.Op Ar options\n";
    for (const OptionText& option : options)
        if (option.isArgument())
            out << (option.isRequired ? ".Ar " : ".Op Ar ") << option.value
                << (option.isRepeatable ? " ..." : "") << '\n';
    out << ".Sh DESCRIPTION\n" << escaped(command.summary) << ".\n";
    if (*command.details != '\0')
        out << ".Pp\n" << escaped(command.details) << '\n';
    printOptions(out, options);
    const bool isUsual = *command.statuses == '\0';
    out << ".Sh EXIT STATUS\n"
        << (isUsual ? "0 success, 2 wrong usage, 3 failure" : escaped(command.statuses)) << ".\n";
    printExamples(out, command.examples);
    out << ".Sh SEE ALSO\n.Xr opctool 1\n";
}

} // namespace opctool
