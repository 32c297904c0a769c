#include "ArchiveLayout.hpp"

#include "DirectoryEnd.hpp"
#include "Failure.hpp"
#include "LocalHeader.hpp"
#include "RecordSignatures.hpp"
#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <numeric>

namespace opc::physical::zip {

namespace {

/// Most local headers aren't longer than this, apart from their names.
constexpr std::size_t USUAL_HEADER = LOCAL_HEADER_SIZE + 64;

/// How many bytes may belong to no item. They are searched. Normally there are none.
constexpr std::uint64_t MOST_UNUSED_BYTES = 16ULL << 20;

/// How many bytes of a mark that begins within the first `size` bytes of an item can stand behind them.
std::size_t reachBehind(const DirectoryEntry& entry, std::uint64_t size) {
    return static_cast<std::size_t>(
        std::min<std::uint64_t>(entry.end - entry.offset - size, RECORD_SIGNATURE - 1));
}

class LayoutCheck {
public:
    LayoutCheck(ByteSource& archive, const std::string& place, ArchiveDirectory& directory)
        : archive(archive), place(place), directory(directory) {}

    void run();

private:
    void checkItem(ItemIndex index);
    void checkDescriptor(ItemIndex index, const unsigned char* header, const unsigned char* descriptor,
                         std::size_t size);
    const unsigned char* readHeader(const DirectoryEntry& entry);
    const unsigned char* read(const DirectoryEntry& entry, std::uint64_t offset,
                              std::vector<unsigned char>& target, std::size_t count);
    void checkOtherDirectory(std::uint64_t offset);
    void searchUnused(std::uint64_t start, std::uint64_t end, const char* side, std::string_view neighbour);

    ByteSource& archive;
    const std::string& place;
    ArchiveDirectory& directory;
    std::vector<unsigned char> headerBuffer;
    std::vector<unsigned char> descriptorBuffer;
    std::uint64_t unused = 0; ///< bytes that belong to no item
};

void LayoutCheck::run() {
    const std::vector<ItemIndex> order = findItemEnds(place, directory);
    std::uint64_t end = 0; // the end of what was checked so far
    for (const ItemIndex index : order) {
        const DirectoryEntry& entry = directory.entries[index];
        searchUnused(end, entry.offset, "in front of ", entry.name);
        checkItem(index);
        end = entry.end;
    }
    searchUnused(end, directory.start, "in front of ", "the directory");
    searchUnused(directory.archiveEnd, archive.size(), "behind ", "the end record");
    for (const std::uint64_t offset : directory.otherDirectories)
        checkOtherDirectory(offset);
}

void LayoutCheck::checkItem(ItemIndex index) {
    DirectoryEntry& entry = directory.entries[index];
    const unsigned char* header = readHeader(entry);
    checkLocalHeader(entry, header, place);
    const std::size_t extraSize = read16(header + 28);
    const std::size_t headerSize = localHeaderSizeOf(header);
    if (hidesRecord(header, header + headerSize + reachBehind(entry, headerSize)))
        directory.ambiguities.push_back({index, "its local header" + std::string(HOLDS_A_MARK), true});
    inspectFields(header + (headerSize - extraSize), extraSize, index, "its local header", place, directory);
    const std::uint64_t contentEnd = entry.offset + headerSize + entry.compressedSize;
    const bool isWrittenEarly = (read16(header + 6) & DATA_DESCRIPTOR) != 0;
    if (read16(header + 6) != entry.flags)
        directory.ambiguities.push_back({index, "its headers have different flags"});
    if (asksForMore(read16(header + 4), read16(header + 6)))
        directory.ambiguities.push_back({index, ASKS_FOR_MORE});
    const auto readContent = [&](std::uint64_t offset, std::size_t count) {
        return read(entry, entry.offset + headerSize + offset, descriptorBuffer, count);
    };
    const std::uint64_t searched =
        entry.compressedSize + reachBehind(entry, headerSize + entry.compressedSize);
    if (isWrittenEarly && entry.method == STORE && holdsRecordSignature(searched, readContent))
        directory.ambiguities.push_back({index, "its content has the mark of its end"});
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(entry.end - contentEnd, LONGEST_DESCRIPTOR));
    const unsigned char* behind = count > 0 ? read(entry, contentEnd, descriptorBuffer, count) : nullptr;
    const std::size_t descriptor = descriptorSize(entry, header, behind, count, place);
    entry.end = contentEnd + descriptor;
    if (isWrittenEarly)
        checkDescriptor(index, header, behind, descriptor);
}

/// Programs that don't use the directory find the next item behind the descriptor.
void LayoutCheck::checkDescriptor(ItemIndex index, const unsigned char* header,
                                  const unsigned char* descriptor, std::size_t size) {
    if (size == 0)
        directory.ambiguities.push_back({index, "its data descriptor is missing"});
    else if (read32(descriptor) != DESCRIPTOR)
        directory.ambiguities.push_back({index, "its data descriptor has no mark", true});
    else if (size < SHORTEST_LARGE_DESCRIPTOR && hasZip64Field(header))
        directory.ambiguities.push_back(
            {index, "its data descriptor has no room for the numbers of ZIP64", true});
}

/// An end record in a content must not lead to records. That of an archive in an archive doesn't, because its numbers count from
/// its own start.
void LayoutCheck::checkOtherDirectory(std::uint64_t offset) {
    std::array<unsigned char, RECORD_SIGNATURE> start{};
    if (offset > archive.size() || archive.size() - offset < start.size())
        return;
    readRecord(archive, place, offset, start.data(), start.size());
    const std::uint32_t signature = read32(start.data());
    if (signature == DIRECTORY_ENTRY || signature == ZIP64_DIRECTORY_END)
        directory.ambiguities.push_back({{}, "an end record in a content leads to records, too", true});
}

/// @return the whole local header and the first bytes behind it, as many as a mark can reach to, valid until the next call
const unsigned char* LayoutCheck::readHeader(const DirectoryEntry& entry) {
    const std::uint64_t room = entry.end - entry.offset;
    const auto first =
        static_cast<std::size_t>(std::min<std::uint64_t>(room, USUAL_HEADER + entry.storedName().size()));
    const unsigned char* header = read(entry, entry.offset, headerBuffer, first);
    if (read32(header) != LOCAL_HEADER)
        failItem(entry, place, "no local header where the directory says");
    const std::size_t size = localHeaderSizeOf(header);
    if (size > room - entry.compressedSize)
        failItem(entry, place, "it reaches into what lies behind it");
    const std::size_t searched = size + reachBehind(entry, size);
    if (searched <= first)
        return header;
    header = read(entry, entry.offset, headerBuffer, searched);
    if (localHeaderSizeOf(header) != size) // another program may be writing to the file
        failItem(entry, place, "its local header has just been changed");
    return header;
}

/// @return `count` bytes that belong to an item: in memory if they are there, otherwise in `target`
const unsigned char* LayoutCheck::read(const DirectoryEntry& entry, std::uint64_t offset,
                                       std::vector<unsigned char>& target, std::size_t count) {
    if (const unsigned char* bytes = archive.inMemory())
        return bytes + offset;
    if (target.size() < count)
        target.resize(count);
    std::size_t got = 0;
    if (const int error = archive.readAt(offset, target.data(), count, got))
        failSystem(itemPlace(place, entry.name), "can't read", error);
    if (got != count)
        failItem(entry, place, "the archive has been cut off");
    return target.data();
}

/// Skips bytes that belong to no item; the next save drops them. Throws if they contain a local header: for programs
/// that don't use the directory, it would be an item.
/// @param side  on which side of the neighbour they are
void LayoutCheck::searchUnused(std::uint64_t start, std::uint64_t end, const char* side,
                               std::string_view neighbour) {
    static constexpr std::array<unsigned char, 4> HEADER = {'P', 'K', 3, 4};
    if (start == end)
        return;
    unused += end - start;
    if (unused > MOST_UNUSED_BYTES)
        fail(place, "more than " + std::to_string(MOST_UNUSED_BYTES) + " bytes belong to no item", EFBIG);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(end - start));
    std::size_t got = 0;
    if (const int error = archive.readAt(start, bytes.data(), bytes.size(), got))
        failSystem(place, "can't read", error);
    if (got != bytes.size())
        fail(place, "can't read: the archive has been cut off", EBADMSG);
    if (std::search(bytes.begin(), bytes.end(), HEADER.begin(), HEADER.end()) != bytes.end())
        fail(itemPlace(place, side + std::string(neighbour)), "an item that the directory doesn't list",
             EBADMSG);
    directory.unread.push_back(
        {{},
         std::to_string(bytes.size()) + " bytes " + side + printable(neighbour) + " that belong to no item",
         true});
}

} // namespace

std::vector<ItemIndex> findItemEnds(const std::string& place, ArchiveDirectory& directory) {
    std::vector<ItemIndex> order(directory.entries.size());
    std::iota(order.begin(), order.end(), 0U);
    const auto before = [&](ItemIndex a, ItemIndex b) {
        return directory.entries[a].offset < directory.entries[b].offset;
    };
    if (!std::is_sorted(order.begin(), order.end(), before))
        std::sort(order.begin(), order.end(), before);
    for (std::size_t i = 0; i < order.size(); ++i) {
        DirectoryEntry& entry = directory.entries[order[i]];
        const DirectoryEntry* next = i + 1 < order.size() ? &directory.entries[order[i + 1]] : nullptr;
        entry.end = next ? next->offset : directory.start;
        if (entry.end - entry.offset < LOCAL_HEADER_SIZE + entry.storedName().size() + entry.compressedSize)
            fail(itemPlace(place, entry.name),
                 "overlaps with " + (next ? printable(next->name) : std::string("the directory")), EBADMSG);
    }
    return order;
}

void checkLayout(ByteSource& archive, const std::string& place, ArchiveDirectory& directory) {
    LayoutCheck(archive, place, directory).run();
}

} // namespace opc::physical::zip
