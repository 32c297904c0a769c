#include "archive/DirectoryEntries.hpp"

#include "archive/HeaderFields.hpp"
#include "zip/src/ArchiveDirectory.hpp"
#include "zip/src/ExtraFields.hpp"
#include "zip/src/NameText.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>

namespace opc::inspection::archive {

using namespace physical::zip;

namespace {

class EntryReader {
public:
    EntryReader(RecordBytes& bytes, const DirectoryPlace& place, const physical::ZipOptions& limits,
                ArchiveContents& contents)
        : bytes(bytes), place(place), limits(limits), contents(contents) {}

    void read();

private:
    bool readEntry();
    void readNumbers(const unsigned char* record, ArchiveItem& item);
    void checkLimits(ArchiveItem& item);
    /// Of the item that is being read.
    void fault(std::string_view rule, std::string message) {
        contents.addFault(rule, contents.items.size(), position, std::move(message));
    }

    RecordBytes& bytes;
    const DirectoryPlace& place;
    const physical::ZipOptions& limits;
    ArchiveContents& contents;
    std::uint64_t position = 0;
    std::uint64_t totalSize = 0;
};

void EntryReader::read() {
    std::uint64_t most = std::min(place.itemCount, limits.maxItems);
    if (place.itemCount > limits.maxItems)
        contents.addFault("SEC-54", std::nullopt, place.start,
                          "More items than the limit of " + std::to_string(limits.maxItems) +
                              ": the others aren't looked at");
    if (place.end - place.start > limits.maxDirectorySize)
        contents.addFault("SEC-54", std::nullopt, place.start,
                          "The directory has more bytes than the limit of " +
                              std::to_string(limits.maxDirectorySize));
    contents.items.reserve(
        static_cast<std::size_t>(std::min(most, (bytes.size() - place.start) / DIRECTORY_ENTRY_SIZE)));
    for (position = place.start; most > 0 && position - place.start <= limits.maxDirectorySize; --most)
        if (!readEntry())
            break;
    contents.hasDirectory = true;
    contents.directory = {place.start, position};
    if (most > 0 && place.itemCount <= limits.maxItems)
        contents.addFault("M3.16", std::nullopt, position,
                          "The directory ends behind " + std::to_string(contents.items.size()) + " of " +
                              std::to_string(place.itemCount) + " items");
    else if (position != place.end && place.itemCount <= limits.maxItems)
        contents.addFault("SEC-50", std::nullopt, position,
                          "The directory has another size than the end record says");
}

/// @return whether there was one
bool EntryReader::readEntry() {
    const unsigned char* record = bytes.look(position, DIRECTORY_ENTRY_SIZE);
    if (!record || read32(record) != DIRECTORY_ENTRY)
        return false;
    const std::size_t size = directoryEntrySizeOf(record);
    record = bytes.look(position, size);
    if (!record || directoryEntrySizeOf(record) != size)
        return false;
    ArchiveItem item;
    ItemHeader& header = item.central.emplace();
    const char* const text = reinterpret_cast<const char*>(record) + DIRECTORY_ENTRY_SIZE;
    header.name.assign(text, read16(record + 28));
    header.extraFields.assign(text + header.name.size(), read16(record + 30));
    item.comment.assign(text + header.name.size() + header.extraFields.size(), read16(record + 32));
    item.name = decodeName(header.name);
    item.versionMadeBy = read16(record + 4);
    readFields(record + 6, header);
    item.externalAttributes = read32(record + 38);
    if (const unsigned disk = read16(record + 34);
        disk != 0 && disk != 0xFFFF) // that one is in a ZIP64 field
        fault("M3.17", "The item says that it is in another file of the archive");
    readNumbers(record, item);
    checkLimits(item);
    if (!isUTF8(header.name))
        fault("M3.2", (header.flags & NAME_IS_UTF8) != 0
                          ? "The name of the item isn't the UTF-8 that its flag promises"
                          : "The name of the item has bytes beyond ASCII that aren't UTF-8");
    if (item.unreadable.empty()) {
        DirectoryEntry entry;
        entry.flags = header.flags;
        entry.method = header.method;
        item.unreadable = whyUnreadable(entry);
    }
    contents.items.push_back(std::move(item));
    position += size;
    return true;
}

void EntryReader::readNumbers(const unsigned char* record, ArchiveItem& item) {
    ItemHeader& header = *item.central;
    header.compressedSize = read32(record + 20);
    header.size = read32(record + 24);
    std::uint64_t offset = read32(record + 42);
    Zip64Field field(reinterpret_cast<const unsigned char*>(header.extraFields.data()),
                     header.extraFields.size());
    if (!field.resolve(header.size) || !field.resolve(header.compressedSize) || !field.resolve(offset)) {
        item.unreadable = "its ZIP64 field is missing or too short";
        fault("M3.16", "The ZIP64 field of the item is missing or too short");
    }
    item.headerOffset = offset + place.shift;
    if (header.method == STORE && (header.flags & ENCRYPTED) == 0 && header.size != header.compressedSize &&
        item.unreadable.empty()) {
        item.unreadable = "is stored, but its two sizes differ";
        fault("M3.14", "The item is stored, but its two sizes differ");
    }
}

void EntryReader::checkLimits(ArchiveItem& item) {
    const auto limit = [&](bool exceeded, const char* what, std::uint64_t most) {
        if (exceeded)
            fault("SEC-54", what + (" of " + std::to_string(most)));
        return exceeded;
    };
    const ItemHeader& header = *item.central;
    limit(header.name.size() > limits.maxNameLength, "The name has more bytes than the limit",
          limits.maxNameLength);
    limit(static_cast<std::uint64_t>(std::count_if(header.name.begin(), header.name.end(),
                                                   [](char c) { return c == '/' || c == '\\'; })) >
              limits.maxDepth,
          "The name has more folders than the limit", limits.maxDepth);
    const bool isTooLarge =
        limit(header.size > limits.maxItemSize, "The item has more bytes than the limit",
              limits.maxItemSize) ||
        limit(header.size > limits.maxTotalSize - totalSize,
              "The items together have more bytes than the limit", limits.maxTotalSize) ||
        limit(header.size > limits.ratioFloor &&
                  header.size / std::max<std::uint64_t>(limits.maxRatio, 1) > header.compressedSize,
              "The item expands more than the limit", limits.maxRatio);
    if (!isTooLarge)
        totalSize += header.size;
    else
        item.unreadable = "is beyond a limit";
}

} // namespace

void readDirectoryEntries(RecordBytes& bytes, const DirectoryPlace& place, const physical::ZipOptions& limits,
                          ArchiveContents& contents) {
    EntryReader(bytes, place, limits, contents).read();
}

} // namespace opc::inspection::archive
