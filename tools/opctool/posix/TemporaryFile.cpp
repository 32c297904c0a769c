#include "TemporaryFile.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include <unistd.h>

namespace opctool {

TemporaryFile::TemporaryFile() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    std::string pattern = ((error ? "/tmp" : folder) / "opctool-XXXXXX").string();
    const int file = ::mkstemp(pattern.data());
    if (file < 0)
        throw opc::Exception("A temporary file can't be made", {errno, boost::system::generic_category()});
    ::close(file);
    name = pattern;
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(name, ignored);
}

} // namespace opctool
