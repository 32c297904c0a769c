#include "mending/TemporaryArchive.hpp"

#include <opc/editing/Mending.hpp>

#include "zip/src/ArchiveStore.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace opc::editing {

using inspection::Archive;
using physical::zip::ByteTarget;
using physical::zip::FileDescriptor;

namespace {

[[noreturn]] void fail(const std::string& what, int code) {
    throw Exception(what, {code, boost::system::generic_category()});
}

/// A file in the folder for temporary files, which loses its name at the end.
class NamedFile {
public:
    NamedFile()
        : name((std::filesystem::temp_directory_path() / "opcmodel-XXXXXX").string()),
          file(::mkostemp(name.data(), O_CLOEXEC)) {
        if (!file.isOpen())
            fail(name + ": can't be made", errno);
    }
    NamedFile(const NamedFile&) = delete;
    NamedFile& operator=(const NamedFile&) = delete;
    ~NamedFile() { ::unlink(name.c_str()); }

    void write(const unsigned char* bytes, std::size_t count) {
        if (const int error = file.writeAt(size, bytes, count))
            fail(name + ": can't be written", error);
        size += count;
    }

    const std::string& path() const { return name; }

private:
    std::string name;
    FileDescriptor file;
    std::uint64_t size = 0;
};

/// Collects what is written in pieces that are worth a call of the system.
class Collector {
public:
    explicit Collector(mending::Sink sink) : sink(std::move(sink)) { bytes.reserve(SIZE); }

    void take(const unsigned char* more, std::size_t count) {
        if (bytes.size() + count > SIZE)
            flush();
        if (count > SIZE)
            sink(more, count);
        else
            bytes.insert(bytes.end(), more, more + count);
    }
    void flush() {
        if (!bytes.empty())
            sink(bytes.data(), bytes.size());
        bytes.clear();
    }

private:
    static constexpr std::size_t SIZE = std::size_t{256} << 10;

    mending::Sink sink;
    std::vector<unsigned char> bytes;
};

void copy(const Archive& archive, const mending::Sink& sink) {
    std::vector<unsigned char> block(std::size_t{256} << 10);
    for (std::uint64_t offset = 0; offset < archive.size();) {
        const std::size_t got = archive.read(offset, block.data(), block.size());
        if (got == 0)
            fail("The archive was cut off while it was read", EIO);
        sink(block.data(), got);
        offset += got;
    }
}

} // namespace

Archive mending::makeTemporaryArchive(const ArchivePlan& plan, const physical::ZipOptions& limits) {
    NamedFile file;
    Collector collector([&file](const unsigned char* bytes, std::size_t count) { file.write(bytes, count); });
    write(plan,
          [&collector](const unsigned char* bytes, std::size_t count) { collector.take(bytes, count); });
    collector.flush();
    return Archive(std::filesystem::path(file.path()), limits);
}

void writeTo(std::ostream& stream, const Archive& archive) {
    copy(archive, [&stream](const unsigned char* bytes, std::size_t count) {
        if (!stream.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count)))
            fail("The output takes no more", EIO);
    });
    if (!stream.flush())
        fail("The output takes no more", EIO);
}

void writeTo(const std::filesystem::path& file, const Archive& archive) {
    physical::zip::FileStore store(file);
    store.replace(nullptr, [&archive, &file](ByteTarget& target) {
        std::uint64_t offset = 0;
        copy(archive, [&](const unsigned char* bytes, std::size_t count) {
            if (const int error = target.writeAt(offset, bytes, count))
                fail(file.string() + ": can't be written", error);
            offset += count;
        });
    });
}

} // namespace opc::editing
