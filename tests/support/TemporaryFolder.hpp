#pragma once

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <sys/wait.h>

namespace opc::test {

/// A new folder. The destructor removes it with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "opcmodel-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::filesystem::filesystem_error("mkdtemp",
                                                    std::error_code(errno, std::generic_category()));
        folder = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

    struct Outcome {
        int status = -1;
        std::string output;
    };

    /// Runs a command of the shell in the folder, without input.
    /// @return its exit status, -1 if a signal ended it, and what it wrote to standard output
    Outcome run(const std::string& command) const {
        FILE* const pipe =
            ::popen(("cd '" + folder.string() + "' && { " + command + "; } </dev/null").c_str(), "r");
        if (!pipe)
            throw std::system_error(errno, std::generic_category(), "popen");
        Outcome outcome;
        std::array<char, 4096> block{};
        while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe))
            outcome.output.append(block.data(), count);
        const int status = ::pclose(pipe);
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return outcome;
    }

    /// The number of files, including hidden ones.
    std::size_t count() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }

private:
    std::filesystem::path folder;
};

template <typename Bytes = std::vector<unsigned char>>
Bytes readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

template <typename Bytes>
void writeFile(const std::filesystem::path& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        throw std::runtime_error("can't write " + path.string());
}

} // namespace opc::test
