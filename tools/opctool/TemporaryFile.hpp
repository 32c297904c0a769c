#pragma once

#include <filesystem>

namespace opctool {

/// An empty file of its own in the system's folder for temporary files, which goes with this object.
class TemporaryFile {
public:
    /// @throws opc::Exception  it can't be made
    TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::filesystem::path& path() const { return name; }

private:
    std::filesystem::path name;
};

} // namespace opctool
