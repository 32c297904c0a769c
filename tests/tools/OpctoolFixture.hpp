#pragma once

#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>

namespace opc::test {

/// Runs opctool in a folder of its own, as a person at a shell does.
class Opctool : public testing::Test {
protected:
    struct Outcome {
        int status;
        std::string output;
        std::string errors;
    };

    Outcome run(const std::string& arguments) const {
        const auto [status, output] = folder.run("'" OPCTOOL "' " + arguments + " 2>stderr");
        Outcome outcome{status, output, readFile<std::string>(folder / "stderr")};
        std::filesystem::remove(folder / "stderr");
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

    void write(const char* name, const std::string& text) const { writeFile(folder / name, text); }

    TemporaryFolder folder;
};

} // namespace opc::test
