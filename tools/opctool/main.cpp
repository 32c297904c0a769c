#include "Commands.hpp"
#include "Messages.hpp"
#include "Signals.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <boost/core/demangle.hpp>

#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <typeinfo>

namespace {

constexpr int DONE = 0;
constexpr int ANSWER_IS_NO = 1;
constexpr int WRONG_USAGE = 2;
constexpr int FAILURE = 3;

/// The class of a failure, without its namespaces.
std::string className(const std::exception& failure) {
    const std::string name = boost::core::demangle(typeid(failure).name());
    return name.substr(name.rfind(':') + 1);
}

/// The package's file that the command was given; empty if the command has none.
std::string packageOf(const CLI::App& app) {
    for (const CLI::App* command : app.get_subcommands())
        if (const CLI::Option* package = command->get_option_no_throw("PACKAGE"))
            return package->as<std::string>();
    return {};
}

/// The message without the name of the package's file, which stores put at its start.
std::string messageOf(const std::exception& failure, const std::string& package) {
    std::string message = failure.what();
    const std::string place = package + ": ";
    if (message.compare(0, place.size(), place) == 0)
        message.erase(0, place.size());
    const auto* const own = dynamic_cast<const opc::Exception*>(&failure);
    if (own != nullptr && *own->details() != '\0')
        message += std::string("; ") + own->details();
    return message;
}

int fail(const std::exception& failure, const std::string& package) {
    opctool::tell(package, className(failure) + ": " + messageOf(failure, package));
    return FAILURE;
}

/// Prints help, the version, or what is wrong with the arguments; the message repeats that.
int answer(const CLI::App& app, const CLI::ParseError& outcome) {
    std::ostringstream output;
    std::ostringstream errors;
    const int status = app.exit(outcome, output, errors);
    std::cout << opctool::linesWithoutControlCharacters(output.str());
    std::cerr << opctool::linesWithoutControlCharacters(errors.str());
    return status == 0 ? DONE : WRONG_USAGE;
}

int run(CLI::App& app, int argc, char** argv) {
    int status = DONE;
    try {
        app.parse(argc, argv);
    } catch (const opctool::AnswerIsNo&) {
        status = ANSWER_IS_NO;
    }
    std::cout.flush();
    if (!std::cout)
        throw opc::Exception("Standard output can't be written");
    return status;
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory for its commands the tool can't even say so
int main(int argc, char** argv) {
    opctool::leaveNothingBehindOnSignals();
    CLI::App app(
        "Shows, changes and signs packages in the Open Packaging Conventions (docx, xlsx, pptx, 3mf, xps,\n"
        "nupkg …). Exit status: 0 success, 1 the answer is no, 2 wrong usage, 3 failure.",
        "opctool");
    app.set_version_flag("--version", OPCMODEL_VERSION);
    app.require_subcommand(1);
    opctool::addInfoCommand(app);
    opctool::addListCommands(app);
    opctool::addPropertyCommands(app);
    opctool::addChangeCommands(app);
    opctool::addKeyCommand(app);
    opctool::addSignCommands(app);
    opctool::addVerifyCommand(app);
    opctool::addCoverageCommand(app);
    opctool::addCheckCommand(app);
    opctool::addExplainCommand(app);
    try {
        return run(app, argc, argv);
    } catch (const CLI::ParseError& e) {
        return answer(app, e);
    } catch (const std::exception& e) {
        return fail(e, packageOf(app));
    }
}
