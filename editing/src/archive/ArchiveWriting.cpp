#include <opc/editing/ArchiveWriting.hpp>

#include "zip/src/ArchiveStore.hpp"
#include "zip/src/Failure.hpp"

#include <opc/model/Errors.hpp>

#include <cerrno>
#include <vector>

namespace opc::editing {

using inspection::Archive;
using physical::zip::ByteTarget;

namespace {

constexpr std::size_t BLOCK = std::size_t{256} << 10;

/// @param take  gets the offset of each block, its bytes and its size
template <typename Take>
void copy(const Archive& archive, Take take) {
    std::vector<unsigned char> block(BLOCK);
    for (std::uint64_t offset = 0; offset < archive.size();) {
        const std::size_t got = archive.read(offset, block.data(), block.size());
        if (got == 0)
            physical::zip::fail(archive.place(), "was cut off while it was read", EIO);
        take(offset, block.data(), got);
        offset += got;
    }
}

void replace(const std::filesystem::path& file, const Archive& archive, const physical::FileState& old) {
    physical::zip::FileStore store(file);
    store.checkWritable();
    store.replace(old, [&](ByteTarget& target) {
        copy(archive, [&](std::uint64_t offset, const unsigned char* bytes, std::size_t count) {
            if (const int error = target.writeAt(offset, bytes, count))
                physical::zip::failSystem(store.place(), "can't write", error);
        });
    });
}

} // namespace

void writeTo(std::ostream& stream, const Archive& archive) {
    const auto require = [](bool isWritten) {
        if (!isWritten)
            throw Exception("The output takes no more", {EIO, boost::system::generic_category()});
    };
    copy(archive, [&](std::uint64_t, const unsigned char* bytes, std::size_t count) {
        require(
            bool(stream.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count))));
    });
    require(bool(stream.flush()));
}

void writeTo(const std::filesystem::path& file, const Archive& archive) {
    replace(file, archive, {});
}

void writeBack(const std::filesystem::path& file, const Archive& archive, const physical::FileState& read) {
    try {
        replace(file, archive, read);
    } catch (const Exception& e) {
        throw model::PackageCloseFailed(e.what(), e.code());
    }
}

} // namespace opc::editing
