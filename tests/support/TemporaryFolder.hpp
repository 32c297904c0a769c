#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace opc::test {

/// A new folder. The destructor removes it with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        do
            folder = std::filesystem::temp_directory_path() / ("opcmodel-" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

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
