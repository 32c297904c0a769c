#include "ArchiveWriter.hpp"

#include "Failure.hpp"
#include "RecordWriting.hpp"
#include "Records.hpp"
#include "ZipContent.hpp"

#include <algorithm>
#include <array>
#include <cerrno>

namespace opc::physical::zip {

namespace {

constexpr std::size_t BLOCK = 1U << 20;

bool isASCII(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; });
}

} // namespace

ArchiveWriter::ArchiveWriter(const ArchiveReader* oldArchive, ByteTarget& target, std::string archivePlace,
                             bool fixedTimes)
    : old(oldArchive), out(target), where(std::move(archivePlace)),
      time(fixedTimes ? DOS_TIME_ORIGIN : dosTimeNow()), changes(old ? old->itemCount() : 0), block(BLOCK) {
}

void ArchiveWriter::put(const ZipContent& content) {
    if (!content.written()->isWhole())
        fail(content.itemPlace(), "writing it has failed: it must be written again or deleted", EIO);
    const std::vector<ItemIndex>& items = content.oldItems();
    if (items.size() == 1) {
        changes[items.front()].content = &content;
        return;
    }
    for (const ItemIndex piece : items)
        remove(piece);
    added.push_back(&content);
}

void ArchiveWriter::finish() {
    for (ItemIndex item = 0; item < changes.size(); ++item) {
        if (changes[item].removed)
            continue;
        if (changes[item].content)
            write(*changes[item].content, &old->item(item));
        else
            keep(item);
    }
    for (const ZipContent* content : added)
        write(*content, nullptr);
    writeDirectory();
    if (const int error = out.flush())
        failSystem(where, "can't save", error);
}

/// Items that stand one behind the other are copied together.
void ArchiveWriter::keep(ItemIndex item) {
    const DirectoryEntry& entry = old->item(item);
    if (entry.offset != runEnd) {
        copyRun();
        runStart = entry.offset;
    }
    placed.push_back({&entry, out.tell() + (entry.offset - runStart), 0});
    runEnd = entry.end;
}

void ArchiveWriter::copyRun() {
    copyBytes(runStart, runEnd);
    runStart = runEnd = 0;
}

void ArchiveWriter::copyBytes(std::uint64_t from, std::uint64_t to) {
    const FileDescriptor* file = old ? old->bytes().asFile() : nullptr;
    if (file && to - from >= BLOCK) {
        std::uint64_t copied = 0;
        if (const int error = out.copy(*file, from, to - from, copied))
            failSystem(where, "can't save", error);
        from += copied;
    }
    while (from < to) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, to - from));
        emit(readBlock(old->bytes(), from, count), count);
        from += count;
    }
}

void ArchiveWriter::write(const ZipContent& content, const DirectoryEntry* replaced) {
    copyRun();
    DirectoryEntry entry;
    if (replaced) {
        entry.name = replaced->name;
        entry.rawName = replaced->rawName;
    } else {
        entry.name = content.itemName();
    }
    if (entry.rawName.empty() && !isASCII(entry.name))
        entry.flags = NAME_IS_UTF8;
    entry.size = content.written()->size();
    entry.method = entry.size > 0 ? content.method() : STORE;
    entry.offset = out.tell();
    emit(localHeader(entry, time));
    writeContent(content, entry);
    const std::uint64_t end = out.tell();
    out.seek(entry.offset);
    emit(localHeader(entry, time));
    out.seek(end);
    placed.push_back({nullptr, entry.offset, entries.size()});
    entries.push_back(std::move(entry));
}

void ArchiveWriter::writeContent(const ZipContent& content, DirectoryEntry& entry) {
    const std::uint64_t start = out.tell();
    if (entry.method == DEFLATE)
        deflate(*content.written(), content.level(), entry);
    else
        store(*content.written(), entry);
    entry.compressedSize = out.tell() - start;
}

void ArchiveWriter::store(ByteSource& content, DirectoryEntry& entry) {
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = readBlock(content, offset, count);
        entry.crc = static_cast<std::uint32_t>(::crc32(entry.crc, bytes, static_cast<uInt>(count)));
        emit(bytes, count);
        offset += count;
    }
}

void ArchiveWriter::deflate(ByteSource& content, int level, DirectoryEntry& entry) {
    std::array<unsigned char, 65536> compressed{};
    deflater.start(level);
    for (std::uint64_t offset = 0; offset < entry.size;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK, entry.size - offset));
        const unsigned char* bytes = readBlock(content, offset, count);
        entry.crc = static_cast<std::uint32_t>(::crc32(entry.crc, bytes, static_cast<uInt>(count)));
        offset += count;
        deflater.setInput(bytes, count, offset == entry.size);
        std::size_t got = 0;
        do {
            got = deflater.compress(compressed.data(), compressed.size());
            emit(compressed.data(), got);
        } while (got == compressed.size());
    }
}

const unsigned char* ArchiveWriter::readBlock(ByteSource& content, std::uint64_t offset, std::size_t count) {
    std::size_t got = 0;
    if (const int error = content.readAt(offset, block.data(), count, got))
        failSystem(where, "can't read what is to be saved", error);
    if (got != count)
        fail(where, "can't read what is to be saved: cut off", EIO);
    return block.data();
}

void ArchiveWriter::writeDirectory() {
    copyRun();
    const std::uint64_t start = out.tell();
    for (const Placed& item : placed) {
        if (item.kept)
            writeKeptRecord(*item.kept, item.offset);
        else
            emit(directoryRecord(entries[item.written], time));
    }
    emit(endRecords(placed.size(), start, out.tell() - start, old ? old->comment() : std::string()));
}

void ArchiveWriter::writeKeptRecord(const DirectoryEntry& entry, std::uint64_t offset) {
    std::size_t count = DIRECTORY_ENTRY_SIZE;
    const unsigned char* bytes = readBlock(old->bytes(), entry.record, count);
    count += std::size_t{read16(bytes + 28)} + read16(bytes + 30) + read16(bytes + 32);
    bytes = readBlock(old->bytes(), entry.record, count);
    emit(movedRecord({bytes, bytes + count}, offset));
}

void ArchiveWriter::emit(const std::string& bytes) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): characters are bytes here
    emit(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

void ArchiveWriter::emit(const unsigned char* bytes, std::size_t count) {
    if (const int error = out.write(bytes, count))
        failSystem(where, "can't save", error);
}

} // namespace opc::physical::zip
