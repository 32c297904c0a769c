#include "ArchiveReader.hpp"

#include "ExtraFields.hpp"
#include "Failure.hpp"
#include "Records.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace opc::physical::zip {

namespace {

/// Whether a local header's numbers are those of the directory. One that was written before the content may
/// have nothing there yet.
bool hasNumbersOf(const DirectoryEntry& entry, const unsigned char* header, const unsigned char* extra) {
    const bool early = (read16(header + 6) & DATA_DESCRIPTOR) != 0;
    std::uint64_t compressedSize = read32(header + 18);
    std::uint64_t size = read32(header + 22);
    Zip64Field field(extra, read16(header + 28));
    if (!field.resolve(size) || !field.resolve(compressedSize))
        return early;
    const auto agrees = [early](std::uint64_t local, std::uint64_t directory) {
        return local == directory || (early && local == 0);
    };
    return agrees(read32(header + 14), entry.crc) && agrees(size, entry.size) &&
           agrees(compressedSize, entry.compressedSize);
}

} // namespace

ArchiveReader::ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                             const ZipOptions& limits)
    : source(std::move(archive)), where(std::move(archivePlace)) {
    readDirectory(*source, where, limits, directory);
}

std::size_t ArchiveReader::recordSize(ItemIndex index) const {
    const std::uint64_t end = index + 1 < itemCount() ? item(index + 1).record : directory.end;
    return static_cast<std::size_t>(end - item(index).record);
}

ArchiveReader::ItemStart ArchiveReader::lookAtStart(ItemIndex index, unsigned char* buffer,
                                                    std::size_t room) const {
    const DirectoryEntry& entry = item(index);
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(room, entry.end - entry.offset));
    const unsigned char* bytes = look(index, entry.offset, buffer, size);
    if (read32(bytes) != LOCAL_HEADER)
        failItem(index, "no local header where the directory says");
    const std::size_t headerSize = localHeaderSizeOf(bytes);
    if (entry.end - entry.offset - entry.compressedSize < headerSize)
        failItem(index, "it reaches into what lies behind it");
    if (headerSize > size) {
        std::vector<unsigned char> header(headerSize);
        const unsigned char* whole = look(index, entry.offset, header.data(), headerSize);
        if (localHeaderSizeOf(whole) != headerSize) // another program may be writing to the file
            failItem(index, "its local header has just been changed");
        checkHeader(index, whole);
    } else {
        checkHeader(index, bytes);
    }
    return {bytes, size, headerSize};
}

void ArchiveReader::checkHeader(ItemIndex index, const unsigned char* header) const {
    const DirectoryEntry& entry = item(index);
    const unsigned char* name = header + LOCAL_HEADER_SIZE;
    const std::size_t nameSize = read16(header + 26);
    const std::string_view expected = entry.storedName();
    if (nameSize != expected.size() || std::memcmp(name, expected.data(), nameSize) != 0)
        failItem(index, "its local header has another name");
    if (read16(header + 8) != entry.method || ((read16(header + 6) ^ entry.flags) & ENCRYPTED) != 0 ||
        !hasNumbersOf(entry, header, name + nameSize))
        failItem(index, "its local header differs from the directory");
}

void ArchiveReader::read(ItemIndex index, std::uint64_t offset, unsigned char* buffer,
                         std::size_t count) const {
    std::size_t got = 0;
    if (const int error = source->readAt(offset, buffer, count, got))
        failSystem(itemPlace(index), "can't read", error);
    if (got != count)
        failItem(index, "the archive has been cut off");
}

const unsigned char* ArchiveReader::look(ItemIndex index, std::uint64_t offset, unsigned char* buffer,
                                         std::size_t count) const {
    if (const unsigned char* bytes = source->inMemory())
        return bytes + offset;
    read(index, offset, buffer, count);
    return buffer;
}

bool ArchiveReader::expandWhole(ItemIndex index, unsigned char* content) {
    const DirectoryEntry& entry = item(index);
    std::uint64_t room = entry.end - entry.offset;
    if (!source->inMemory()) {
        room = std::min<std::uint64_t>(room, LARGEST_WHOLE);
        if (compressed.size() < room)
            compressed.resize(static_cast<std::size_t>(room));
    }
    const ItemStart start = lookAtStart(index, compressed.data(), static_cast<std::size_t>(room));
    if (start.size < start.headerSize || start.size - start.headerSize < entry.compressedSize)
        return false;
    const auto size = static_cast<std::size_t>(entry.size);
    return wholeInflater.expand(start.bytes + start.headerSize,
                                static_cast<std::size_t>(entry.compressedSize), content, size) &&
           ::libdeflate_crc32(0, content, size) == entry.crc;
}

std::unique_ptr<Inflater> ArchiveReader::takeInflater() {
    if (!spare)
        return std::make_unique<Inflater>();
    spare->restart();
    return std::move(spare);
}

std::vector<unsigned char> ArchiveReader::takeMemory(std::size_t size) {
    std::vector<unsigned char> memory = std::exchange(spareMemory, {});
    if (memory.size() < size)
        memory.resize(size);
    return memory;
}

void ArchiveReader::failItem(ItemIndex index, const std::string& what) const {
    fail(itemPlace(index), "can't read: " + what, EBADMSG);
}

std::string ArchiveReader::itemPlace(ItemIndex index) const {
    return zip::itemPlace(where, item(index).name);
}

} // namespace opc::physical::zip
