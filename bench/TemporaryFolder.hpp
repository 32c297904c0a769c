#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace bench {

/// A new folder. The destructor removes it with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "opcmodel-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
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

private:
    std::filesystem::path folder;
};

} // namespace bench
