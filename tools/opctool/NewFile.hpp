#pragma once

#include <string>
#include <vector>

namespace opctool {

/// A new file. If it may replace another one, it is written under another name first. Unless it is kept, it is removed.
/// Failures are `opc::Exception`.
class NewFile {
public:
    enum class Readers { Owner, All };

    NewFile(const std::string& name, Readers readers, bool replace);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// Call it once.
    void write(const std::vector<unsigned char>& bytes) const;
    void keep();

private:
    /// Throws what `errno` says.
    [[noreturn]] void fail() const;

    std::string finalPath;
    std::string path;
    int descriptor;
    bool kept = false;
};

} // namespace opctool
