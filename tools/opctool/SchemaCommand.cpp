#include "Commands.hpp"
#include "Envelope.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace opctool {

namespace {

std::string checkCommand(const std::string& name) {
    const Command* const command = findCommand(name);
    if (command != nullptr && command->resultSchema != nullptr)
        return {};
    std::string problem = name + " prints no JSON; these commands do:";
    for (const Command* other : allCommands())
        if (other->resultSchema != nullptr)
            problem += std::string(" ") + other->name;
    return problem;
}

void declare(CLI::App& command) {
    const auto name = std::make_shared<std::string>();
    command.add_option("COMMAND", *name, "A command that prints JSON")
        ->required()
        ->check(checkCommand)
        ->type_name("");
    command.callback([name] { std::cout << envelopeSchema(*findCommand(*name)).dump(2) << '\n'; });
}

} // namespace

const Command SCHEMA{
    "schema", "Print the JSON Schema of what a command prints with --json=2 and --jsonl", declare,
    "It describes the object for one package; --json=2 prints an array of such objects for more than "
    "one. Objects of one kind always have the members that the schema requires. Later versions of "
    "shape 2 add members, but don't remove, rename or retype one: ignore those that you don't know.",
    "opctool schema ls"};

} // namespace opctool
