#include "ZipContentReader.hpp"

#include "Checksum.hpp"
#include "Failure.hpp"
#include "Records.hpp"
#include "ZipContent.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

namespace {

/// For smaller contents zlib is faster, because its tables are smaller. Compares the compressed size.
constexpr std::uint64_t SMALLEST_WHOLE = 512;

} // namespace

ItemReader::ItemReader(ArchiveReader& archive, ItemRange items) : archive(archive), items(items) {
    enterItem();
}

ItemReader::~ItemReader() {
    if (inflater)
        archive.giveInflater(std::move(inflater));
    if (!kept.empty())
        archive.giveMemory(kept);
}

/// Skips items without content, after checking that they have none.
void ItemReader::enterItem() {
    for (; !isDone(); ++items.first) {
        archive.requireReadable(item());
        left = archive.item(item()).size;
        started = false;
        if (left > 0)
            return;
        startItem();
        endItem();
    }
}

/// One read fetches the header and the content of a small item.
void ItemReader::startItem() {
    const DirectoryEntry& entry = archive.item(item());
    checksum = 0;
    ended = unfinished = false;
    // Some programs mark an empty item as deflated and write no compressed data at all.
    isDeflated = entry.method == DEFLATE && (entry.size > 0 || entry.compressedSize > 0);
    inflater = archive.takeInflater();
    const ArchiveReader::ItemStart start =
        archive.lookAtStart(item(), inflater->input().data(), inflater->input().size());
    compressedOffset = entry.offset + start.headerSize;
    compressedEnd = compressedOffset + entry.compressedSize;
    if (start.headerSize < start.size) {
        const auto count = static_cast<std::size_t>(
            std::min<std::uint64_t>(start.size - start.headerSize, entry.compressedSize));
        inflater->setInput(start.bytes + start.headerSize, count);
        compressedOffset += count;
    }
    started = true;
}

/// Checks the checksum after the last byte, and that it is the last one.
void ItemReader::endItem() {
    if (isDeflated && !ended)
        endStream();
    if (isDeflated && (compressedOffset < compressedEnd || !inflater->needsInput()))
        archive.failItem(item(), "something stands behind its compressed data");
    archive.giveInflater(std::move(inflater));
    if (checksum != archive.item(item()).crc)
        archive.failItem(item(), "its checksum is wrong");
    if (unfinished)
        archive.noteUnfinished(item());
}

void ItemReader::endStream() {
    unfinished = archive.takesUnfinished();
    unsigned char more = 0;
    if (expand(&more, 1) > 0)
        archive.failItem(item(), "longer than the directory says");
    unfinished = unfinished && !ended;
}

std::uint64_t ItemReader::read(unsigned char* buffer, std::uint64_t count) {
    if (isDone() || count == 0)
        return 0;
    if (damaged)
        fail(archive.itemPlace(item()), "can't read behind a damaged place", EBADMSG);
    damaged = true;
    constexpr std::uint64_t AT_MOST = 1U << 30;
    const auto room = static_cast<std::size_t>(std::min(count, AT_MOST));
    const std::size_t got = started ? readOn(buffer, room) : readFirst(buffer, room);
    archive.noteRead(got);
    left -= got;
    if (left == 0) {
        ++items.first;
        enterItem();
    }
    damaged = false;
    return got;
}

/// Expands a deflated item as a whole, into `buffer` if it has room for all of it. If anything is wrong, the inflater
/// starts again, comes as far as it can and reports the failure.
std::size_t ItemReader::readFirst(unsigned char* buffer, std::size_t room) {
    const DirectoryEntry& entry = archive.item(item());
    if (entry.method == DEFLATE && entry.compressedSize >= SMALLEST_WHOLE) {
        if (entry.size <= room) {
            if (archive.expandWhole(item(), buffer))
                return static_cast<std::size_t>(entry.size);
        } else if (entry.size <= ArchiveReader::LARGEST_WHOLE) {
            kept = archive.takeMemory(static_cast<std::size_t>(entry.size));
            if (archive.expandWhole(item(), kept.data())) {
                started = true;
                return readKept(buffer, room);
            }
            archive.giveMemory(kept);
        }
    }
    const bool isSmall =
        entry.method == DEFLATE && entry.compressedSize < SMALLEST_WHOLE && entry.size <= room;
    if (isSmall && archive.recall(item(), buffer))
        return static_cast<std::size_t>(entry.size);
    startItem();
    const std::size_t got = readOn(buffer, room);
    if (isSmall && got == entry.size && !unfinished)
        archive.keep(item(), buffer);
    return got;
}

std::size_t ItemReader::readOn(unsigned char* buffer, std::size_t room) {
    if (!kept.empty())
        return readKept(buffer, room);
    const std::size_t got = isDeflated ? expand(buffer, room) : copy(buffer, room);
    if (got == 0)
        archive.failItem(item(), "shorter than the directory says");
    if (got > left)
        archive.failItem(item(), "longer than the directory says");
    checksum = addToChecksum(checksum, buffer, got);
    if (got == left)
        endItem();
    return got;
}

std::size_t ItemReader::readKept(unsigned char* buffer, std::size_t room) {
    const auto got = static_cast<std::size_t>(std::min<std::uint64_t>(room, left));
    std::copy_n(kept.data() + (archive.item(item()).size - left), got, buffer);
    if (got == left)
        archive.giveMemory(kept);
    return got;
}

std::size_t ItemReader::copy(unsigned char* buffer, std::size_t count) {
    if (!inflater->needsInput())
        return inflater->pass(buffer, count);
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    archive.read(item(), compressedOffset, buffer, size);
    compressedOffset += size;
    return size;
}

/// Uses all the room, although no more than the rest should come: more is an error, and zlib is faster with extra
/// room.
/// @return 0 only at the end of the compressed stream, or of all data if it may be unfinished
std::size_t ItemReader::expand(unsigned char* buffer, std::size_t count) {
    std::size_t got = 0;
    while (got == 0 && !ended) {
        if (inflater->needsInput() && compressedOffset < compressedEnd)
            loadInput();
        const bool lastInput = compressedOffset == compressedEnd;
        const Inflater::Result result = inflater->expand(buffer, count, got);
        ended = result == Inflater::Result::End;
        const bool stuck = !ended && got == 0 && lastInput && inflater->needsInput();
        if (stuck && unfinished)
            return 0;
        if (result == Inflater::Result::Damaged || stuck)
            archive.failItem(item(), "its compressed data is damaged");
    }
    return got;
}

void ItemReader::loadInput() {
    const auto size = static_cast<std::size_t>(
        std::min<std::uint64_t>(inflater->input().size(), compressedEnd - compressedOffset));
    inflater->setInput(archive.look(item(), compressedOffset, inflater->input().data(), size), size);
    compressedOffset += size;
}

std::uint64_t SpoolReader::read(unsigned char* buffer, std::uint64_t count) {
    std::size_t got = 0;
    if (const int error = spool->readAt(position, buffer, static_cast<std::size_t>(count), got))
        failSystem(owner.itemPlace(), "can't read what has been written", error);
    position += got;
    return got;
}

} // namespace opc::physical::zip
