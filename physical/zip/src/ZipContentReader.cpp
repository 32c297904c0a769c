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
        left = archive.status(items[current]).size;
        if (left > 0)
            return;
        startItem();
        endItem();
    }
}

void ItemReader::startItem() {
    damaged = true;
    file = archive.open(items[current]);
    damaged = false;
}

/// The checksum is tested where one reads past the last byte, which must really be the last one.
void ItemReader::endItem() {
    unsigned char more = 0;
    const zip_int64_t got = zip_fread(file.get(), &more, 1);
    if (got < 0)
        failZip(archive.itemPlace(items[current]), "can't read", *zip_file_get_error(file.get()));
    if (got > 0)
        fail(archive.itemPlace(items[current]), "can't read: longer than the directory says", EBADMSG);
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
    const zip_int64_t got = zip_fread(file.get(), buffer, std::min(count, left));
    if (got < 0)
        failZip(archive.itemPlace(items[current]), "can't read", *zip_file_get_error(file.get()));
    if (got == 0)
        fail(archive.itemPlace(items[current]), "can't read: shorter than the directory says", EBADMSG);
    left -= static_cast<std::uint64_t>(got);
    if (left == 0) {
        endItem();
        ++current;
        enterItem();
    }
    damaged = false;
    return static_cast<std::uint64_t>(got);
}

std::uint64_t SpoolReader::read(unsigned char* buffer, std::uint64_t count) {
    std::size_t got = 0;
    if (const int error = spool->readAt(position, buffer, static_cast<std::size_t>(count), got))
        failSystem(place, "can't read what has been written", error);
    position += got;
    return got;
}

} // namespace opc::physical::zip
