#pragma once

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/wait.h>

namespace opc::test {

inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Runs opctool in a folder of its own, as a person at a shell does.
class Opctool : public testing::Test {
protected:
    struct Outcome {
        int status = -1;
        std::string output;
        std::string errors;
    };

    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "opctool_XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    Outcome run(const std::string& arguments) const {
        const std::filesystem::path errors = folder / "stderr";
        const std::string command =
            "cd '" + folder.string() + "' && '" OPCTOOL "' " + arguments + " 2>'" + errors.string() + "'";
        Outcome outcome;
        FILE* pipe = popen(command.c_str(), "r");
        std::array<char, 4096> block{};
        for (std::size_t got = 0; (got = fread(block.data(), 1, block.size(), pipe)) > 0;)
            outcome.output.append(block.data(), got);
        const int status = pclose(pipe);
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.errors = contentOf(errors);
        std::filesystem::remove(errors);
        return outcome;
    }

    nlohmann::json list(const std::string& arguments) const {
        const Outcome outcome = run(arguments + " --json");
        EXPECT_EQ(outcome.status, 0) << arguments << ": " << outcome.errors;
        return nlohmann::json::parse(outcome.output, nullptr, false);
    }

    void copy(const char* fixture, const char* name) const {
        std::filesystem::copy_file(std::filesystem::path(OPCMODEL_TEST_DATA) / "office" / fixture,
                                   folder / name);
    }

    void write(const char* name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    std::filesystem::path folder;
};

} // namespace opc::test
