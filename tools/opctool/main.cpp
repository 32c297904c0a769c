#include "Commands.hpp"
#include "Failures.hpp"
#include "Messages.hpp"
#include "Signals.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <sstream>
#include <string>

namespace {

using namespace opctool;

/// The one package's file that the command was given; empty if there is none, or more than one.
std::string packageOf(const CLI::App& app) {
    for (const CLI::App* command : app.get_subcommands())
        if (const CLI::Option* package = command->get_option_no_throw("PACKAGE"))
            if (package->count() == 1)
                return package->results().front();
    return {};
}

int fail(const std::exception& failure, const std::string& package) {
    const Failure described = describe(failure, package);
    tell(package, described.className + ": " + described.message);
    return FAILURE;
}

/// Prints help, the version, or what is wrong with the arguments; the message repeats that.
int answer(const CLI::App& app, const CLI::ParseError& outcome) {
    std::ostringstream output;
    std::ostringstream errors;
    const int status = app.exit(outcome, output, errors);
    std::cout << linesWithoutControlCharacters(output.str());
    std::cerr << linesWithoutControlCharacters(errors.str());
    return status == 0 ? DONE : WRONG_USAGE;
}

/// Declares the command that the command line names. Without one, only the names of all are declared, for help.
void declareCommands(CLI::App& app, const char* name) {
    if (const Command* const command = name == nullptr ? nullptr : findCommand(name)) {
        command->declare(*app.add_subcommand(command->name, command->summary));
        return;
    }
    for (const Command* command : allCommands())
        app.add_subcommand(command->name, command->summary);
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

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory for its commands the tool can't even say so
int main(int argc, char** argv) {
    leaveNothingBehindOnSignals();
    CLI::App app(
        "Shows, changes and signs packages in the Open Packaging Conventions (docx, xlsx, pptx, 3mf, xps,\n"
        "nupkg …). Exit status: 0 success, 1 the answer is no, 2 wrong usage, 3 failure.",
        "opctool");
    app.set_version_flag("--version", "opctool " OPCMODEL_VERSION);
    app.require_subcommand(1);
    declareCommands(app, argc > 1 ? argv[1] : nullptr);
    try {
        return run(app, argc, argv);
    } catch (const CLI::ParseError& e) {
        return answer(app, e);
    } catch (const std::exception& e) {
        return fail(e, packageOf(app));
    }
}
