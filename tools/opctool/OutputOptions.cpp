#include "OutputOptions.hpp"

#include "Terminal.hpp"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <string>

namespace opctool {

namespace {

bool wantsColor(const std::string& when, StandardStream stream) {
    if (when != "auto")
        return when == "always";
    const char* const noColor = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return isTerminal(stream) && (noColor == nullptr || *noColor == '\0') && terminal != nullptr &&
           std::string(terminal) != "dumb";
}

void setColor(OutputOptions& options, const std::string& when) {
    options.colored = wantsColor(when, StandardStream::Output);
    options.coloredErrors = wantsColor(when, StandardStream::Errors);
}

} // namespace

void addOutputOptions(CLI::App& command, OutputOptions& options) {
    setColor(options, "auto");
    command
        .add_option_function<std::string>(
            "--color", [&options](const std::string& when) { setColor(options, when); },
            "Colour the output: auto (on a terminal, unless NO_COLOR is set or TERM is dumb), always or "
            "never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN")
        ->group("Output");
    CLI::Option* quiet =
        command.add_flag("-q,--quiet", options.quiet, "Print no result and no remarks, only failures")
            ->group("Output");
    command
        .add_flag("-v,--verbose", options.verbose,
                  "Print all remarks, however many, and of many packages how each status counts")
        ->excludes(quiet)
        ->group("Output");
}

void addJSONOptions(CLI::App& command, OutputOptions& options) {
    command
        .add_flag(
            "--json{1}", options.shape,
            "Print JSON: --json only what was found, --json=2 with tool, file, status and failure around it")
        ->check(CLI::IsMember({1, 2}))
        ->group("Output");
    command.add_flag("--jsonl", options.jsonLines, "Print the JSON of --json=2 on one line for each package")
        ->group("Output");
}

} // namespace opctool
