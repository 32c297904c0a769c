#pragma once

#include <string>

namespace opctool {

/// A password, overwritten on destruction.
class Password {
public:
    /// Reads the first line of the file. Without a file, asks on the terminal without echo. Without a terminal, the
    /// password is empty.
    /// @param file  a path, or empty
    /// @throws opc::Exception  the file can't be read
    explicit Password(const std::string& file);
    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;
    ~Password();

    const std::string& get() const noexcept { return text; }

private:
    void readFrom(std::istream& stream);

    std::string text;
};

} // namespace opctool
