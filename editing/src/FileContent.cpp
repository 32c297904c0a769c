#include <opc/editing/FileContent.hpp>

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <utility>

namespace opc::editing {

FileContent::FileContent(std::filesystem::path path) : path(std::move(path)) {
    FileContent::open();
}

void FileContent::open() {
    file.clear();
    errno = 0;
    file.open(path, std::ios::binary);
    if (!file.is_open())
        fail();
    done = false;
}

std::uint64_t FileContent::read(unsigned char* buffer, std::uint64_t count) {
    errno = 0;
    file.read(reinterpret_cast<char*>(buffer), static_cast<std::streamsize>(count));
    done = file.eof();
    if (!file && !done)
        fail();
    return static_cast<std::uint64_t>(file.gcount());
}

void FileContent::fail() const {
    throw Exception(path.string() + " can't be read",
                    {errno != 0 ? errno : EIO, boost::system::generic_category()});
}

} // namespace opc::editing
