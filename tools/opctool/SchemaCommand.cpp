#include "Commands.hpp"
#include "Envelope.hpp"

#include <opc/editing/Job.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

/// Those that print JSON for each package.
std::vector<std::string> namesOfCommands() {
    std::vector<std::string> names;
    for (const Command* command : allCommands())
        if (command->resultSchema != nullptr)
            names.emplace_back(command->name);
    return names;
}

void declareSchema(CLI::App& command) {
    const auto name = std::make_shared<std::string>();
    CLI::Option* const ofCommand = command.add_option("COMMAND", *name, "A command that prints JSON")
                                       ->check(CLI::IsMember(namesOfCommands()))
                                       ->type_name("");
    CLI::Option* const ofJob =
        command.add_flag("--job", "Print the schema of the jobs that apply reads")->excludes(ofCommand);
    command.callback([name, ofJob] {
        if (ofJob->count() != 0)
            std::cout << opc::editing::jobSchema();
        else if (name->empty())
            throw CLI::RequiredError("COMMAND");
        else
            std::cout << envelopeSchema(*findCommand(*name)).dump(2) << '\n';
    });
}

} // namespace

const Command SCHEMA{
    "schema", "Print the JSON Schema of what a command prints with --json=2 and --jsonl", declareSchema,
    "It describes the object for one package; --json=2 prints an array of such objects for more than "
    "one. Objects of one kind always have the members that the schema requires. Later versions of "
    "shape 2 add members, but don't remove, rename or retype one: ignore those that you don't know. Commands "
    "that write bytes or files and have nothing else to say, such as cat and keygen, print no JSON.",
    "opctool schema ls\n"
    "opctool schema --job"};

} // namespace opctool
