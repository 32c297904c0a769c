#pragma once

#include "ShellCommand.hpp"
#include "TemporaryFolder.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace opc::test {

/// A folder for files that OpenSSL's command line reads and writes. The destructor removes it.
class OpenSslCommand {
public:
    using Bytes = std::vector<unsigned char>;

    /// Runs `openssl` with these arguments in the folder.
    /// @return what it wrote to both outputs
    /// @throws std::runtime_error  the command fails; the exception has that text
    std::string run(const std::string& arguments) const {
        ShellOutcome outcome = runInShell(folder.path(), "openssl " + arguments + " 2>&1");
        if (outcome.status != 0)
            throw std::runtime_error("openssl " + arguments + ": " + outcome.output);
        return std::move(outcome.output);
    }

    void write(const std::string& name, const Bytes& bytes) const { writeFile(folder / name, bytes); }
    Bytes read(const std::string& name) const { return readFile(folder / name); }
    std::filesystem::path path(const std::string& name) const { return folder / name; }

private:
    TemporaryFolder folder;
};

} // namespace opc::test
