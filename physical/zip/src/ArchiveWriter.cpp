#include "ArchiveWriter.hpp"

#include "Failure.hpp"
#include "NameText.hpp"
#include "RecordWriting.hpp"
#include "Records.hpp"
#include "ZipContent.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

namespace opc::physical::zip {

namespace {

constexpr std::size_t BLOCK = 1U << 20;

} // namespace

ArchiveWriter::ArchiveWriter(const ArchiveReader* old, ByteTarget& out, std::string where,
                             const ZipOptions& options)
    : old(old), out(out), where(std::move(where)), options(options),
      time(options.deterministic ? DOS_TIME_ORIGIN : dosTimeNow()), changes(old ? old->itemCount() : 0) {
}

void ArchiveWriter::put(const ZipContent& content) {
    if (!content.written()->isWhole())
        fail(content.itemPlace(), "writing it has failed: it must be written again or deleted", EIO);
    const ItemRange items = content.oldItems();
    if (items.size() == 1) {
        changes[*items.first].content = &content;
        return;
    }
    for (const ItemIndex piece : items)
        remove(piece);
    added.push_back(&content);
}

void ArchiveWriter::putSecond(const ZipContent& content) {
    put(content);
    if (added.empty() || added.back() != &content)
        return;
    added.pop_back();
    second = &content;
}

void ArchiveWriter::writeSecond() {
    if (second && itemCount > 0)
        write(*std::exchange(second, nullptr), nullptr);
}

void ArchiveWriter::finish() {
    for (ItemIndex item = 0; item < changes.size(); ++item) {
        if (changes[item].removed)
            continue;
        if (changes[item].content)
            write(*changes[item].content, &old->item(item));
        else
            keep(item);
        writeSecond();
    }
    if (second)
        added.insert(added.empty() ? added.end() : std::next(added.begin()), std::exchange(second, nullptr));
    for (const ZipContent* content : added)
        write(*content, nullptr);
    finishDirectory();
    require(out.flush());
}

/// Neighbouring items are copied together.
void ArchiveWriter::keep(ItemIndex item) {
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
             ESTALE);
    const auto* record = reinterpret_cast<const char*>(bytes);
    appendMovedRecord(directory, {record, size}, out.tell() + (entry.offset - runStart));
    ++itemCount;
}

void ArchiveWriter::copyRun() {
    const FileDescriptor* file = old ? old->bytes().asFile() : nullptr;
    if (file && runEnd - runStart >= BLOCK) {
        std::uint64_t copied = 0;
        require(out.copy(*file, runStart, runEnd - runStart, copied));
        runStart += copied;
    }
    while (runStart < runEnd) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, runEnd - runStart));
        emit(look(old->bytes(), runStart, count), count);
        runStart += count;
    }
    runStart = runEnd = 0;
}

void ArchiveWriter::write(const ZipContent& content, const DirectoryEntry* replaced) {
    copyRun();
    DirectoryEntry entry;
    entry.name = content.itemName();
    entry.rawName = replaced ? replaced->rawName : std::string_view();
    if (entry.rawName.empty() && !isASCII(entry.name))
        entry.flags = NAME_IS_UTF8;
    entry.size = content.written()->size();
    entry.offset = out.tell();
    const std::size_t headerSize = localHeaderSize(entry);
    require(out.makeRoom(headerSize));
    out.advance(headerSize);
    writeContent(content, entry);
    const std::string header = localHeader(entry, time);
    require(out.patch(entry.offset, reinterpret_cast<const unsigned char*>(header.data()), headerSize));
    appendRecord(directory, entry, time);
    ++itemCount;
}

/// Stores a content that readers would refuse because of its ratio.
void ArchiveWriter::writeContent(const ZipContent& content, DirectoryEntry& entry) {
    const std::uint64_t start = out.tell();
    entry.method = entry.size > 0 ? content.method() : STORE;
    if (entry.method == DEFLATE) {
        if (entry.size <= BLOCK)
            deflateWhole(*content.written(), content.level(), entry);
        else
            deflateStream(*content.written(), content.level(), entry);
        entry.compressedSize = out.tell() - start;
        if (!exceedsRatio(entry, options))
            return;
        out.rewind(start);
        entry.method = STORE;
    }
    store(*content.written(), entry);
    entry.compressedSize = entry.size;
}

void ArchiveWriter::store(ByteSource& content, DirectoryEntry& entry) {
    entry.crc = 0;
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = look(content, offset, count);
        entry.crc = ::libdeflate_crc32(entry.crc, bytes, count);
        emit(bytes, count);
        offset += count;
    }
}

/// Contents that fit into one block. Their place in memory doesn't matter, so the same bytes are written whatever the
/// memory.
void ArchiveWriter::deflateWhole(ByteSource& content, int level, DirectoryEntry& entry) {
    const auto count = static_cast<std::size_t>(entry.size);
    const unsigned char* bytes = look(content, 0, count);
    entry.crc = ::libdeflate_crc32(0, bytes, count);
    const std::size_t bound = WholeDeflater::bound(count);
    if (bound <= BufferedTarget::CAPACITY) {
        require(out.makeRoom(bound));
        out.advance(wholeDeflater.compress(level, bytes, count, out.room()));
    } else {
        if (compressed.size() < bound)
            compressed.resize(bound);
        emit(compressed.data(), wholeDeflater.compress(level, bytes, count, compressed.data()));
    }
}

void ArchiveWriter::deflateStream(ByteSource& content, int level, DirectoryEntry& entry) {
    deflater.start(level);
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = look(content, offset, count);
        entry.crc = ::libdeflate_crc32(entry.crc, bytes, count);
        offset += count;
        deflater.setInput(bytes, count, offset == entry.size);
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

/// @return `count` bytes of `source`, valid until the next call
const unsigned char* ArchiveWriter::look(ByteSource& source, std::uint64_t offset, std::size_t count) {
    if (const unsigned char* bytes = source.inMemory())
        return bytes + offset;
    if (block.size() < count)
        block.resize(count);
    std::size_t got = 0;
    if (const int error = source.readAt(offset, block.data(), count, got))
        failSystem(where, "can't read what is to be saved", error);
    if (got != count)
        fail(where, "can't read what is to be saved: cut off", EIO);
    return block.data();
}

void ArchiveWriter::finishDirectory() {
    copyRun();
    const std::uint64_t start = out.tell();
    emit(directory);
    emit(endRecords(itemCount, start, directory.size(), old ? old->comment() : std::string()));
}

void ArchiveWriter::emit(const std::string& bytes) {
    emit(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

void ArchiveWriter::emit(const unsigned char* bytes, std::size_t count) {
    require(out.write(bytes, count));
}

void ArchiveWriter::require(int error) const {
    if (error)
        failSystem(where, "can't save", error);
}

} // namespace opc::physical::zip
