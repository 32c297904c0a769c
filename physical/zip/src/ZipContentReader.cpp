#include "ZipContentReader.hpp"

#include "Failure.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

ItemReader::ItemReader(const ArchiveReader& reader, std::vector<ItemIndex> pieces)
    : archive(reader), items(std::move(pieces)) {
    enterItem();
}

/// Passes over items without content, but not without having tested that they have none.
void ItemReader::enterItem() {
    for (; current < items.size(); ++current) {
        left = archive.item(items[current]).size;
        if (left > 0)
            return;
        startItem();
        endItem();
    }
}

void ItemReader::startItem() {
    const DirectoryEntry& entry = archive.item(items[current]);
    damaged = true;
    file = archive.open(items[current]);
    if (entry.compressedSize == 0 && entry.size > 0)
        archive.failItem(items[current], "its compressed data is damaged");
    damaged = false;
}

/// The checksum is tested where one reads past the last byte, which must really be the last one.
void ItemReader::endItem() {
    const DirectoryEntry& entry = archive.item(items[current]);
    unsigned char more = 0;
    // Some programs call an empty item deflated and write no compressed data at all.
    if ((entry.compressedSize > 0 || entry.crc != 0) && readItem(&more, 1) > 0)
        archive.failItem(items[current], "longer than the directory says");
    file.reset();
}

std::uint64_t ItemReader::read(unsigned char* buffer, std::uint64_t count) {
    if (isDone() || count == 0)
        return 0;
    if (damaged)
        fail(archive.itemPlace(items[current]), "can't read behind a damaged place", EBADMSG);
    if (!file)
        startItem();
    damaged = true;
    const std::uint64_t got = readItem(buffer, std::min(count, left));
    if (got == 0)
        archive.failItem(items[current], "shorter than the directory says");
    left -= got;
    if (left == 0) {
        endItem();
        ++current;
        enterItem();
    }
    damaged = false;
    return got;
}

/// @return 0 at the end of the item alone
std::uint64_t ItemReader::readItem(unsigned char* buffer, std::uint64_t count) {
    const zip_int64_t got = zip_fread(file.get(), buffer, count);
    if (got >= 0)
        return static_cast<std::uint64_t>(got);
    zip_error_t& error = *zip_file_get_error(file.get());
    switch (error.zip_err) {
    case ZIP_ER_CRC: // if bytes are missing as well, the compressed data has been cut off
        archive.failItem(items[current],
                         left == 0 ? "its checksum is wrong" : "its compressed data is damaged");
    case ZIP_ER_INCONS:
        archive.failItem(items[current], "shorter than the directory says");
    case ZIP_ER_EOF:
    case ZIP_ER_ZLIB:
    case ZIP_ER_COMPRESSED_DATA:
        archive.failItem(items[current], "its compressed data is damaged");
    default:
        failZip(archive.itemPlace(items[current]), "can't read", error);
    }
}

std::uint64_t SpoolReader::read(unsigned char* buffer, std::uint64_t count) {
    std::size_t got = 0;
    if (const int error = spool->readAt(position, buffer, static_cast<std::size_t>(count), got))
        failSystem(place, "can't read what has been written", error);
    position += got;
    return got;
}

} // namespace opc::physical::zip
