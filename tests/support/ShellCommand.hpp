#pragma once

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include <sys/wait.h>

namespace opc::test {

struct ShellOutcome {
    int status = -1;
    std::string output;
};

/// Runs a command of the shell in a folder, without input.
/// @return its exit status, -1 if a signal ended it, and what it wrote to standard output
inline ShellOutcome runInShell(const std::filesystem::path& folder, const std::string& command) {
    FILE* const pipe =
        ::popen(("cd '" + folder.string() + "' && { " + command + "; } </dev/null").c_str(), "r");
    if (!pipe)
        throw std::system_error(errno, std::generic_category(), "popen");
    ShellOutcome outcome;
    std::array<char, 4096> block{};
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe))
        outcome.output.append(block.data(), count);
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

} // namespace opc::test
