#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace opc::test {

/// A folder of its own for files that OpenSSL's command line reads and writes; it goes with the object.
class OpenSslCommand {
public:
    using Bytes = std::vector<unsigned char>;

    OpenSslCommand() {
        std::string name = (std::filesystem::temp_directory_path() / "opcmodel-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder for test files");
        folder = name;
    }
    OpenSslCommand(const OpenSslCommand&) = delete;
    OpenSslCommand& operator=(const OpenSslCommand&) = delete;
    ~OpenSslCommand() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    /// Runs `openssl` with these arguments in the folder.
    /// @return what it wrote to both outputs
    /// @throws std::runtime_error  with that text, if it fails
    std::string run(const std::string& arguments) const {
        const std::string command =
            "cd '" + folder.string() + "' && openssl " + arguments + " 2>&1 </dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            throw std::runtime_error("no shell");
        std::string output;
        std::array<char, 4096> block{};
        while (const std::size_t count = fread(block.data(), 1, block.size(), pipe))
            output.append(block.data(), count);
        if (pclose(pipe) != 0)
            throw std::runtime_error("openssl " + arguments + ": " + output);
        return output;
    }

    void write(const std::string& name, const Bytes& bytes) const {
        std::ofstream file(folder / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    Bytes read(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    std::filesystem::path path(const std::string& name) const { return folder / name; }

private:
    std::filesystem::path folder;
};

} // namespace opc::test
