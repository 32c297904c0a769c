#include "Commands.hpp"

#include <opc/scanning/FolderWalk.hpp>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace opctool {

namespace {

struct GitSetupArguments {
    bool attributes = false;
    bool config = false;
};

void printAttributes() {
    for (const std::string& extension : opc::scanning::knownExtensions())
        std::cout << "*." << extension << " diff=opc\n";
}

void printConfig() {
    std::cout << "[diff \"opc\"]\n"
                 "\ttextconv = opctool flat --\n"
                 "\tcachetextconv = true\n"
                 "\tbinary = true\n";
}

void setUp(const GitSetupArguments& arguments) {
    const bool both = arguments.attributes == arguments.config;
    if (both)
        std::cout << "# .gitattributes, which is committed:\n";
    if (both || arguments.attributes)
        printAttributes();
    if (both)
        std::cout << "\n# .git/config of each clone, or ~/.gitconfig:\n";
    if (both || arguments.config)
        printConfig();
}

void declareGitSetup(CLI::App& command) {
    const auto arguments = std::make_shared<GitSetupArguments>();
    command.add_flag("--attributes", arguments->attributes, "Print only the lines for .gitattributes");
    command.add_flag("--config", arguments->config, "Print only the lines for the configuration");
    command.callback([arguments] { setUp(*arguments); });
}

} // namespace

const Command GIT_SETUP{"git-setup", "Print the lines with which git shows what changed in packages",
                        declareGitSetup,
                        "Nothing is written. With these lines git diff, git log -p and git show compare "
                        "packages as the texts that "
                        "flat prints. What git stores doesn't change.",
                        "opctool git-setup --attributes >>.gitattributes\n"
                        "opctool git-setup --config"};

} // namespace opctool
