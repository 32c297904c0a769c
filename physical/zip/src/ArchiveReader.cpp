#include "ArchiveReader.hpp"

#include "ArchiveLayout.hpp"
#include "Checksum.hpp"
#include "Failure.hpp"
#include "LocalHeader.hpp"
#include "OrdinaryBlock.hpp"
#include "RecordSignatures.hpp"
#include "Records.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace opc::physical::zip {

ArchiveReader::ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                             const ZipOptions& options, HeaderCheck check)
    : source(std::move(archive)), where(std::move(archivePlace)), whenRead(options.whenRead),
      memory(source->inMemory() ? options.memory : nullptr), lenient(options.lenient) {
    readDirectory(*source, where, options, directory);
    hasCheckedLayout = check == HeaderCheck::Now;
    if (hasCheckedLayout)
        checkLayout(*source, where, directory);
    else
        findItemEnds(where, directory);
}

void ArchiveReader::checkLayoutNow() {
    if (std::exchange(hasCheckedLayout, true))
        return;
    try {
        checkLayout(*source, where, directory);
    } catch (...) {
        hasCheckedLayout = false;
        throw;
    }
}

void ArchiveReader::searchContents() {
    if (std::exchange(hasSearchedContents, true))
        return;
    std::vector<unsigned char> buffer;
    for (ItemIndex index = 0; index < itemCount(); ++index) {
        const DirectoryEntry& entry = item(index);
        unsigned char room[LOCAL_HEADER_SIZE];
        const unsigned char* const header = look(index, entry.offset, room, sizeof room);
        const bool isInZip64Field = read32(header + 18) == NO_ROOM_32 || read32(header + 22) == NO_ROOM_32;
        const bool isWrittenEarly = entry.method != STORE && (entry.flags & DATA_DESCRIPTOR) != 0;
        if (!isInZip64Field && !isWrittenEarly)
            continue;
        const std::uint64_t start = entry.offset + localHeaderSizeOf(header);
        const auto readContent = [&](std::uint64_t offset, std::size_t count) {
            buffer.resize(std::max(buffer.size(), count));
            return look(index, start + offset, buffer.data(), count);
        };
        if (isInZip64Field && holdsRecordSignature(entry.compressedSize, readContent))
            directory.ambiguities.push_back({index, "its content has the mark of its end", true});
        else if (isWrittenEarly && holdsDescriptorAndMore(entry.compressedSize, readContent))
            directory.ambiguities.push_back(
                {index, "its compressed data has the marks of its end and of more", true});
    }
}

ArchiveReader::ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                             std::vector<DirectoryEntry> entries)
    : source(std::move(archive)), where(std::move(archivePlace)), comparesHeaders(false) {
    directory.entries = std::move(entries);
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
        if (comparesHeaders)
            checkLocalHeader(entry, whole, where);
    } else if (comparesHeaders) {
        checkLocalHeader(entry, bytes, where);
    }
    return {bytes, size, headerSize};
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
    const unsigned char* const data = start.bytes + start.headerSize;
    const auto count = static_cast<std::size_t>(entry.compressedSize);
    const auto size = static_cast<std::size_t>(entry.size);
    const bool isExpanded =
        strict ? expandAsZlib(data, count, content, size) : wholeInflater.expand(data, count, content, size);
    return isExpanded && addToChecksum(0, content, size) == entry.crc;
}

bool ArchiveReader::expandAsZlib(const unsigned char* data, std::size_t count, unsigned char* content,
                                 std::size_t size) {
    if (const auto block = OrdinaryBlock::find(data, count);
        block && block->isAllOf(data, count, wholeInflater.expandFirstBlock(data, count, content, size)))
        return true;
    std::unique_ptr<Inflater> inflater = takeInflater();
    inflater->setInput(data, count);
    std::size_t got = 0;
    const bool isExpanded = inflater->expand(content, size, got) == Inflater::Result::End && got == size &&
                            inflater->needsInput();
    giveInflater(std::move(inflater));
    return isExpanded;
}

bool ArchiveReader::recall(ItemIndex index, unsigned char* content) const {
    if (!memory)
        return false;
    const DirectoryEntry& entry = item(index);
    const std::string* const known = memory->find(entry.crc, compressedBytes(index));
    if (!known || known->size() != entry.size)
        return false;
    std::copy(known->begin(), known->end(), content);
    return true;
}

void ArchiveReader::keep(ItemIndex index, const unsigned char* content) const {
    if (memory)
        memory->keep(item(index).crc, compressedBytes(index),
                     {reinterpret_cast<const char*>(content), static_cast<std::size_t>(item(index).size)});
}

/// Those of an item in memory.
std::string_view ArchiveReader::compressedBytes(ItemIndex index) const {
    const DirectoryEntry& entry = item(index);
    const ItemStart start = lookAtStart(index, nullptr, static_cast<std::size_t>(entry.end - entry.offset));
    return {reinterpret_cast<const char*>(start.bytes + start.headerSize),
            static_cast<std::size_t>(entry.compressedSize)};
}

void ArchiveReader::requireReadable(ItemIndex index) const {
    if (const std::string why = whyUnreadable(item(index)); !why.empty())
        fail(itemPlace(index), why, ENOTSUP);
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
    zip::failItem(item(index), where, what);
}

std::string ArchiveReader::itemPlace(ItemIndex index) const {
    return zip::itemPlace(where, item(index).name);
}

} // namespace opc::physical::zip
