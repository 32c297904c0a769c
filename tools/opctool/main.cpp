#include "CommandTree.hpp"
#include "Commands.hpp"
#include "Failures.hpp"
#include "Help.hpp"
#include "Messages.hpp"
#include "Signals.hpp"
#include "Start.hpp"
#include "Suggestion.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace opctool;

/// The file of the only package that the command was given; empty if there is none, or more than one.
std::string packageOf(const CLI::App& app) {
    for (const CLI::App* command : app.get_subcommands())
        if (const CLI::Option* package = command->get_option_no_throw("PACKAGE"))
            if (package->count() == 1)
                return package->results().front();
    return {};
}

int fail(const std::exception& failure, const std::string& package) {
    const Failure described = opc::scanning::describe(failure, package);
    tell(package, described.className + ": " + described.message);
    return FAILURE;
}

/// The option that is meant by the first one that isn't known; empty if there is none.
std::string suggestOption(const CLI::App& app) {
    for (const CLI::App* command : app.get_subcommands()) {
        std::vector<std::string> known;
        for (const OptionText& option : optionsOf(*command))
            known.insert(known.end(), option.names.begin(), option.names.end());
        for (const std::string& argument : app.remaining(true))
            if (argument.compare(0, 2, "--") == 0)
                return findClosest(argument.substr(0, argument.find('=')), known);
    }
    return {};
}

/// Prints help, the version, or what is wrong with the arguments; the message repeats that.
int answer(const CLI::App& app, const CLI::ParseError& outcome) {
    std::ostringstream output;
    std::ostringstream errors;
    const int status = app.exit(outcome, output, errors);
    std::cout << linesWithoutControlCharacters(output.str());
    std::cerr << linesWithoutControlCharacters(errors.str());
    if (status == 0)
        return DONE;
    const std::string meant = suggestOption(app);
    if (!meant.empty())
        std::cerr << "Did you mean " << meant << "?\n";
    return WRONG_USAGE;
}

int refuseCommand(const std::string& name) {
    std::vector<std::string> names;
    for (const Command* command : allCommands())
        names.emplace_back(command->name);
    const std::string meant = findClosest(name, names);
    tell({}, name + " is no command" + (meant.empty() ? "" : "; did you mean " + meant + "?"));
    std::cerr << "opctool --help lists the commands.\n";
    return WRONG_USAGE;
}

int run(CLI::App& app, int argc, char** argv) {
    int status = DONE;
    try {
        app.parse(argc, argv);
    } catch (const EndsWith& end) {
        status = end.status;
    }
    std::cout.flush();
    if (!std::cout)
        throw opc::Exception("Standard output can't be written");
    return status;
}

/// @param name  of the command, the only one that is declared; null if the command line names none
int runTool(const char* name, int argc, char** argv) {
    CLI::App app(
        "Shows, checks, changes and signs packages in the Open Packaging Conventions (docx, xlsx, pptx, 3mf, "
        "xps, nupkg …). Exit status: 0 success, 1 the answer is no, 2 wrong usage, 3 failure.",
        "opctool");
    app.formatter(std::make_shared<Help>());
    app.set_version_flag("--version", "opctool " OPCMODEL_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // names of parts begin with a slash
    if (name != nullptr) {
        const Command& command = *findCommand(name);
        command.declare(*app.add_subcommand(command.name, command.summary));
    }
    try {
        return run(app, argc, argv);
    } catch (const CLI::ParseError& e) {
        return answer(app, e);
    } catch (const std::exception& e) {
        return fail(e, packageOf(app));
    }
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory for its commands the tool can't even say so
int main(int argc, char** argv) {
    argv = startProcess(argc, argv);
    leaveNothingBehindOnSignals();
    const char* const name = argc > 1 && argv[1][0] != '-' ? argv[1] : nullptr;
    if (name != nullptr && findCommand(name) == nullptr)
        return refuseCommand(name);
    return runTool(name, argc, argv);
}
