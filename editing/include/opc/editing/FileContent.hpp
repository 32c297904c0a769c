#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/editing/Export.hpp>

#include <filesystem>
#include <fstream>

namespace opc::editing {

/// The bytes of a file, as the content of a part. Reading throws `opc::Exception` with the code of the system.
class OPC_EDITING_EXPORT FileContent : public InputStream {
public:
    /// Opens the file.
    explicit FileContent(std::filesystem::path path);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return done; }
    void close() override { file.close(); }

private:
    [[noreturn]] void fail() const;

    const std::filesystem::path path;
    std::ifstream file;
    bool done = false;
};

} // namespace opc::editing
