#include "Commands.hpp"
#include "Documents.hpp"

#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

namespace {

using namespace opctool;

void writeFile(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file;
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.open(path, std::ios::binary);
    write(file);
    file.close();
}

void writeAll(const std::filesystem::path& share) {
    const std::filesystem::path pages = share / "man" / "man1";
    writeFile(pages / "opctool.1", [](std::ostream& out) { writeManPage(out); });
    for (const Command* command : allCommands())
        writeFile(pages / (std::string("opctool-") + command->name + ".1"),
                  [command](std::ostream& out) { writeManPage(out, *command); });
    writeFile(share / "bash-completion" / "completions" / "opctool", writeBashCompletion);
    writeFile(share / "zsh" / "site-functions" / "_opctool", writeZshCompletion);
    writeFile(share / "fish" / "vendor_completions.d" / "opctool.fish", writeFishCompletion);
}

} // namespace

/// Writes the man pages and completions of opctool: `opctool-docs FOLDER`.
int main(int argc, char** argv) {
    try {
        if (argc != 2) {
            std::cerr << "Usage: opctool-docs FOLDER\n";
            return WRONG_USAGE;
        }
        writeAll(argv[1]);
        return DONE;
    } catch (const std::exception& e) {
        std::cerr << "opctool-docs: " << e.what() << '\n';
        return FAILURE;
    }
}
