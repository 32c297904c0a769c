#include "ItemWriter.hpp"

#include "Failure.hpp"
#include "NameText.hpp"
#include "RecordWriting.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace opc::physical::zip {

namespace {

constexpr std::size_t BLOCK = 1U << 20;

} // namespace

ItemWriter::ItemWriter(const ArchiveReader* old, ByteTarget& out, std::string where,
                       const ZipOptions& options)
    : old(old), out(out), where(std::move(where)), options(options),
      time(options.deterministic ? dosTimeOf(options.deterministicTime) : dosTimeNow()) {
}

/// Neighbouring items are copied together.
void ItemWriter::keep(ItemIndex item) {
    const DirectoryEntry& entry = old->item(item);
    if (entry.offset != runEnd) {
        copyRun();
        runStart = entry.offset;
    }
    runEnd = entry.end;
    const std::size_t size = old->recordSize(item);
    const unsigned char* bytes = look(old->bytes(), entry.record, size);
    if (directoryEntrySizeOf(bytes) != size)
        fail(where, "can't save: the archive has been changed by another program since it was opened",
             CHANGED_MEANWHILE);
    const auto* record = reinterpret_cast<const char*>(bytes);
    appendMovedRecord(directory, {record, size}, out.tell() + (entry.offset - runStart));
    ++count;
}

void ItemWriter::copyRun() {
    const FileDescriptor* file = old ? old->bytes().asFile() : nullptr;
    if (file && runEnd - runStart >= BLOCK) {
        std::uint64_t copied = 0;
        require(out.copy(*file, runStart, runEnd - runStart, copied));
        runStart += copied;
    }
    while (runStart < runEnd) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, runEnd - runStart));
        emit(look(old->bytes(), runStart, size), size);
        runStart += size;
    }
    runStart = runEnd = 0;
}

void ItemWriter::write(const NewItem& item) {
    copyRun();
    DirectoryEntry entry;
    entry.name = item.name;
    entry.rawName = item.rawName;
    if (entry.rawName.empty() && !isASCII(entry.name))
        entry.flags = NAME_IS_UTF8;
    entry.size = item.content.size();
    entry.offset = out.tell();
    const std::size_t headerSize = localHeaderSize(entry);
    require(out.makeRoom(headerSize));
    out.advance(headerSize);
    writeContent(item, entry);
    const std::string header = localHeader(entry, time);
    require(out.patch(entry.offset, reinterpret_cast<const unsigned char*>(header.data()), headerSize));
    appendRecord(directory, entry, time);
    ++count;
}

void ItemWriter::writeContent(const NewItem& item, DirectoryEntry& entry) {
    const std::uint64_t start = out.tell();
    entry.method = entry.size > 0 ? item.method : STORE;
    if (entry.method == DEFLATE) {
        if (entry.size <= BLOCK)
            deflateWhole(item.content, item.level, entry);
        else
            deflateStream(item.content, item.level, entry);
        entry.compressedSize = out.tell() - start;
        if (!exceedsRatio(entry, options))
            return;
        out.rewind(start);
        entry.method = STORE;
    }
    store(item.content, entry);
    entry.compressedSize = entry.size;
}

void ItemWriter::store(ByteSource& content, DirectoryEntry& entry) {
    entry.crc = 0;
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = look(content, offset, size);
        entry.crc = ::libdeflate_crc32(entry.crc, bytes, size);
        emit(bytes, size);
        offset += size;
    }
}

/// Contents that fit into one block. Their place in memory doesn't matter, so the same bytes are written whatever the
/// memory.
void ItemWriter::deflateWhole(ByteSource& content, int level, DirectoryEntry& entry) {
    const auto size = static_cast<std::size_t>(entry.size);
    const unsigned char* bytes = look(content, 0, size);
    entry.crc = ::libdeflate_crc32(0, bytes, size);
    const std::size_t bound = WholeDeflater::bound(size);
    if (bound <= BufferedTarget::CAPACITY) {
        require(out.makeRoom(bound));
        out.advance(wholeDeflater.compress(level, bytes, size, out.room()));
    } else {
        if (compressed.size() < bound)
            compressed.resize(bound);
        emit(compressed.data(), wholeDeflater.compress(level, bytes, size, compressed.data()));
    }
}

void ItemWriter::deflateStream(ByteSource& content, int level, DirectoryEntry& entry) {
    deflater.start(level);
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = look(content, offset, size);
        entry.crc = ::libdeflate_crc32(entry.crc, bytes, size);
        offset += size;
        deflater.setInput(bytes, size, offset == entry.size);
        std::size_t room = 0;
        std::size_t got = 0;
        do {
            require(out.makeRoom(1));
            room = out.roomSize();
            got = deflater.compress(out.room(), room);
            out.advance(got);
        } while (got == room);
    }
}

/// @return `size` bytes of `source`, valid until the next call
const unsigned char* ItemWriter::look(ByteSource& source, std::uint64_t offset, std::size_t size) {
    if (const unsigned char* bytes = source.inMemory())
        return bytes + offset;
    if (block.size() < size)
        block.resize(size);
    std::size_t got = 0;
    if (const int error = source.readAt(offset, block.data(), size, got))
        failSystem(where, "can't read what is to be saved", error);
    if (got != size)
        fail(where, "can't read what is to be saved: cut off", EIO);
    return block.data();
}

void ItemWriter::finish() {
    copyRun();
    const std::uint64_t start = out.tell();
    emit(directory);
    emit(endRecords(count, start, directory.size(), old ? old->comment() : std::string()));
    require(out.flush());
}

void ItemWriter::emit(const std::string& bytes) {
    emit(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

void ItemWriter::emit(const unsigned char* bytes, std::size_t size) {
    require(out.write(bytes, size));
}

void ItemWriter::require(int error) const {
    if (error)
        failSystem(where, "can't save", error);
}

} // namespace opc::physical::zip
