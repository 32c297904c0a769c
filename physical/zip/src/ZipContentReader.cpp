#include "ZipContentReader.hpp"

#include "Failure.hpp"
#include "Records.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

ItemReader::ItemReader(ArchiveReader& reader, std::vector<ItemIndex> pieces)
    : archive(reader), items(std::move(pieces)) {
    enterItem();
}

ItemReader::~ItemReader() {
    if (inflater)
        archive.giveInflater(std::move(inflater));
}

/// Passes over items without content, but not without having tested that they have none.
void ItemReader::enterItem() {
    for (; current < items.size(); ++current) {
        left = archive.item(items[current]).size;
        started = false;
        if (left > 0)
            return;
        startItem();
        endItem();
    }
}

void ItemReader::startItem() {
    const DirectoryEntry& entry = archive.item(items[current]);
    damaged = true;
    compressedOffset = archive.contentOffset(items[current]);
    compressedEnd = compressedOffset + entry.compressedSize;
    checksum = 0;
    // Some programs call an empty item deflated and write no compressed data at all.
    if (entry.method == DEFLATE && (entry.size > 0 || entry.compressedSize > 0))
        inflater = archive.takeInflater();
    damaged = false;
    started = true;
}

/// The checksum is tested where the last byte has been read, which must really be the last one.
void ItemReader::endItem() {
    if (inflater) {
        unsigned char more = 0;
        if (expand(&more, 1) > 0)
            archive.failItem(items[current], "longer than the directory says");
        archive.giveInflater(std::move(inflater));
    }
    if (checksum != archive.item(items[current]).crc)
        archive.failItem(items[current], "its checksum is wrong");
}

std::uint64_t ItemReader::read(unsigned char* buffer, std::uint64_t count) {
    if (isDone() || count == 0)
        return 0;
    if (damaged)
        fail(archive.itemPlace(items[current]), "can't read behind a damaged place", EBADMSG);
    if (!started)
        startItem();
    damaged = true;
    constexpr std::uint64_t AT_MOST = 1U << 30;
    const auto wanted = static_cast<std::size_t>(std::min({count, left, AT_MOST}));
    const std::size_t got = inflater ? expand(buffer, wanted) : copy(buffer, wanted);
    if (got == 0)
        archive.failItem(items[current], "shorter than the directory says");
    checksum = static_cast<std::uint32_t>(::crc32(checksum, buffer, static_cast<uInt>(got)));
    left -= got;
    if (left == 0) {
        endItem();
        ++current;
        enterItem();
    }
    damaged = false;
    return got;
}

std::size_t ItemReader::copy(unsigned char* buffer, std::size_t count) {
    archive.read(items[current], compressedOffset, buffer, count);
    compressedOffset += count;
    return count;
}

/// @return 0 at the end of the compressed stream alone
std::size_t ItemReader::expand(unsigned char* buffer, std::size_t count) {
    std::size_t got = 0;
    while (got == 0) {
        if (inflater->needsInput() && compressedOffset < compressedEnd) {
            const auto size = static_cast<std::size_t>(
                std::min<std::uint64_t>(inflater->input().size(), compressedEnd - compressedOffset));
            archive.read(items[current], compressedOffset, inflater->input().data(), size);
            inflater->setInput(size);
            compressedOffset += size;
        }
        const bool lastInput = compressedOffset == compressedEnd;
        const Inflater::Result result = inflater->expand(buffer, count, got);
        if (result == Inflater::Result::End)
            break;
        const bool stuck = got == 0 && lastInput && inflater->needsInput();
        if (result == Inflater::Result::Damaged || stuck)
            archive.failItem(items[current], "its compressed data is damaged");
    }
    return got;
}

std::uint64_t SpoolReader::read(unsigned char* buffer, std::uint64_t count) {
    std::size_t got = 0;
    if (const int error = spool->readAt(position, buffer, static_cast<std::size_t>(count), got))
        failSystem(place, "can't read what has been written", error);
    position += got;
    return got;
}

} // namespace opc::physical::zip
