#include "archive/DirectoryEntries.hpp"
#include "archive/ItemKinds.hpp"
#include "archive/ItemStream.hpp"
#include "archive/Layout.hpp"
#include "archive/LocalHeaders.hpp"

#include "zip/src/ArchiveStore.hpp"
#include "zip/src/Failure.hpp"
#include "zip/src/Records.hpp"
#include "zip/src/SourceStore.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::inspection {

using namespace archive;
using namespace physical::zip;

namespace {

/// What the reader of contents needs to know of an item.
DirectoryEntry entryOf(const ArchiveItem& item) {
    DirectoryEntry entry;
    entry.name = item.name;
    if (!item.endOffset)
        return entry;
    const ItemHeader& header = item.central ? *item.central : *item.local;
    const bool knowsLater = !item.central && item.hasDescriptor;
    entry.size = knowsLater ? item.descriptorSize : header.size;
    entry.compressedSize = item.central ? header.compressedSize
                           : knowsLater ? item.descriptorCompressedSize
                                        : *item.endOffset - *item.dataOffset;
    entry.crc = knowsLater ? item.descriptorChecksum : header.checksum;
    entry.offset = *item.headerOffset;
    entry.end = *item.endOffset;
    entry.method = header.method;
    entry.flags = header.flags;
    return entry;
}

void requireRoom(ArchiveItem& item, const physical::ZipOptions& limits) {
    const DirectoryEntry entry = entryOf(item);
    if (entry.compressedSize > entry.end - *item.dataOffset)
        item.unreadable = "its data descriptor differs from its place";
    else if (entry.size > limits.maxItemSize || exceedsRatio(entry, limits))
        item.unreadable = "is beyond a limit";
}

/// Keeps what it reads from.
class OwnedBytes : public SourceBytes {
public:
    explicit OwnedBytes(std::shared_ptr<physical::RandomAccessSource> bytes)
        : SourceBytes(*bytes), bytes(std::move(bytes)) {}

private:
    std::shared_ptr<physical::RandomAccessSource> bytes;
};

} // namespace

class Archive::Impl {
public:
    Impl(std::shared_ptr<ByteSource> archive, std::string place, const physical::ZipOptions& limits);

    std::unique_ptr<InputStream> open(const std::vector<const ArchiveItem*>& items);

    std::shared_ptr<ByteSource> source;
    std::string place;
    ArchiveContents contents;

private:
    bool beginsWithItem() const;

    const bool isLenient;
    const std::function<void(std::uint64_t)> whenRead;
    std::unique_ptr<ArchiveReader> reader; ///< made when the first content is read
};

Archive::Impl::Impl(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                    const physical::ZipOptions& limits)
    : source(std::move(archive)), place(std::move(archivePlace)), isLenient(limits.lenient),
      whenRead(limits.whenRead) {
    RecordBytes bytes(*source, place);
    const auto directory = readEndRecords(bytes, contents);
    if (directory)
        readDirectoryEntries(bytes, *directory, limits, contents);
    else if (!beginsWithItem())
        return;
    std::vector<std::size_t> order;
    readLocalHeaders(bytes, contents, order);
    const std::size_t listed = contents.items.size();
    readLayout(bytes, limits, order, contents);
    for (std::size_t i = listed; i < contents.items.size(); ++i)
        requireRoom(contents.items[i], limits);
    tellKinds(contents.items);
    for (const ArchiveFault& fault : contents.faults)
        if (fault.item)
            contents.items[*fault.item].isFaulty = true;
}

bool Archive::Impl::beginsWithItem() const {
    unsigned char start[4];
    std::size_t got = 0;
    return source->readAt(0, start, sizeof start, got) == 0 && got == sizeof start &&
           read32(start) == LOCAL_HEADER;
}

std::unique_ptr<InputStream> Archive::Impl::open(const std::vector<const ArchiveItem*>& items) {
    if (!reader) {
        std::vector<DirectoryEntry> entries;
        entries.reserve(contents.items.size());
        for (const ArchiveItem& item : contents.items)
            entries.push_back(entryOf(item));
        reader = std::make_unique<ArchiveReader>(source, place, std::move(entries));
        reader->setWhenRead(whenRead);
        if (isLenient)
            reader->takeUnfinished();
        else
            reader->readAsMostProgramsDo();
    }
    std::vector<ItemIndex> indexes;
    for (const ArchiveItem* item : items) {
        if (!item->unreadable.empty())
            fail(itemPlace(place, item->name), item->unreadable, EBADMSG);
        indexes.push_back(static_cast<ItemIndex>(item - contents.items.data()));
    }
    return std::make_unique<ItemStream>(*reader, std::move(indexes));
}

Archive::Archive(const std::filesystem::path& path, const physical::ZipOptions& limits) {
    FileStore store(path);
    impl = std::make_unique<Impl>(store.read(), store.place(), limits);
}
Archive::Archive(std::vector<unsigned char> bytes, const physical::ZipOptions& limits) {
    const auto owned = std::make_shared<const std::vector<unsigned char>>(std::move(bytes));
    auto source = std::make_shared<MemoryBytes>(std::shared_ptr<const unsigned char>(owned, owned->data()),
                                                owned->size());
    impl = std::make_unique<Impl>(std::move(source), "archive in memory", limits);
}
Archive::Archive(std::shared_ptr<physical::RandomAccessSource> bytes, const physical::ZipOptions& limits)
    : impl(std::make_unique<Impl>(std::make_shared<OwnedBytes>(std::move(bytes)),
                                  "archive of the application", limits)) {
}
Archive::Archive(Archive&&) noexcept = default;
Archive& Archive::operator=(Archive&&) noexcept = default;
Archive::~Archive() = default;

const std::string& Archive::place() const {
    return impl->place;
}
physical::FileState Archive::fileState() const {
    return impl->source->state();
}

std::uint64_t Archive::size() const {
    return impl->source->size();
}

std::size_t Archive::read(std::uint64_t offset, unsigned char* buffer, std::size_t count) const {
    std::size_t got = 0;
    if (offset >= size())
        return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size() - offset));
    if (const int error = impl->source->readAt(offset, buffer, count, got))
        failSystem(impl->place, "can't read", error);
    return got;
}

const std::vector<ArchiveItem>& Archive::items() const {
    return impl->contents.items;
}
const std::vector<ArchiveGap>& Archive::gaps() const {
    return impl->contents.gaps;
}
const std::vector<ArchiveFault>& Archive::faults() const {
    return impl->contents.faults;
}
bool Archive::isZip() const {
    return impl->contents.hasDirectory;
}
std::string Archive::comment() const {
    return impl->contents.comment;
}

std::unique_ptr<InputStream> Archive::open(const ArchiveItem& item) const {
    return impl->open({&item});
}
std::unique_ptr<InputStream> Archive::open(const std::vector<const ArchiveItem*>& pieces) const {
    return impl->open(pieces);
}

} // namespace opc::inspection
