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

    /// The command fails with this one line about the package, and leaves its file as it is.
    void expectFailure(const std::string& arguments, const std::string& line, const char* file) const {
        const auto before = readFile(folder / file);
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 3) << arguments;
        EXPECT_EQ(outcome.errors, "opctool: " + std::string(file) + ": " + line + "\n") << arguments;
        EXPECT_EQ(outcome.output, "") << arguments;
        EXPECT_EQ(readFile(folder / file), before) << arguments;
    }

    void expectWrongUsage(const std::string& arguments) const {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_NE(outcome.errors, "") << arguments;
    }

    /// Puts an item that has no content type, or is none of the package's, into the container.
    void addItem(const std::string& archive, const std::string& name,
                 const std::string& content = "x") const {
        write("item", content);
        const auto added = folder.run("python3 -c \"import zipfile; zipfile.ZipFile('" + archive +
                                      "', 'a').write('item', '" + name + "')\"");
        std::filesystem::remove(folder / "item");
        ASSERT_EQ(added.status, 0);
    }

    static constexpr const char* OFFICE_FILES[] = {"letter.docx", "budget.xlsx", "talk.pptx", "report.docx",
                                                   "table.xlsx"};

    TemporaryFolder folder;
};

} // namespace opc::test
