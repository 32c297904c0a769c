#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace opc::test {

/// A folder of its own for a test, which goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "opcmodel-test-XXXXXX").string();
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

    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

    /// How many files there are, hidden ones too.
    std::size_t count() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }

private:
    std::filesystem::path folder;
};

inline std::vector<unsigned char> readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::filesystem::path& path, const std::vector<unsigned char>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.flush());
}

/// Whether the programs that others unpack archives with find nothing to complain of.
inline testing::AssertionResult othersAccept(const std::filesystem::path& path) {
    const std::string commands[] = {
        "unzip -tqq '" + path.string() + "'",
        "python3 -c 'import sys, zipfile; sys.exit(zipfile.ZipFile(sys.argv[1]).testzip() is not None)' '" +
            path.string() + "'",
    };
    for (const std::string& command : commands) {
        if (std::system(command.c_str()) != 0)
            return testing::AssertionFailure() << command;
    }
    return testing::AssertionSuccess();
}

} // namespace opc::test
