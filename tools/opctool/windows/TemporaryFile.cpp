#include "TemporaryFile.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <random>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

namespace opctool {

TemporaryFile::TemporaryFile() {
    constexpr int MOST_TRIES = 100;
    std::random_device random;
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    int file = -1;
    for (int tried = 0; file < 0 && tried < MOST_TRIES; ++tried) {
        name = (error ? "." : folder) / ("opctool-" + std::to_string(random()));
        file = ::_wopen(name.c_str(), _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY, _S_IREAD | _S_IWRITE);
        if (file < 0 && errno != EEXIST)
            break;
    }
    if (file < 0)
        throw opc::Exception("A temporary file can't be made", {errno, boost::system::generic_category()});
    ::_close(file);
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(name, ignored);
}

} // namespace opctool
