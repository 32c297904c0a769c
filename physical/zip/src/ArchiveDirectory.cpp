#include "ArchiveDirectory.hpp"

#include "DirectoryEnd.hpp"
#include "ExtraFields.hpp"
#include "Failure.hpp"
#include "NameText.hpp"
#include "Records.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <numeric>

namespace opc::physical::zip {

namespace {

bool isSlash(char c) {
    return c == '/' || c == '\\';
}

class DirectoryReader {
public:
    DirectoryReader(ByteSource& bytes, const std::string& archivePlace, const ZipOptions& options)
        : archive(bytes), place(archivePlace), limits(options), end(readDirectoryEnd(bytes, archivePlace)),
          position(end.offset) {}

    ArchiveDirectory read();
    std::uint64_t offset() const { return end.offset; }

private:
    DirectoryEntry readEntry();
    void readName(DirectoryEntry& entry) const;
    void readNumbers(DirectoryEntry& entry) const;
    void checkNumbers(const DirectoryEntry& entry) const;

    /// How messages name an item whose name can't be told.
    std::string entryPlace() const { return itemPlace(place, "item " + std::to_string(entryNumber)); }
    const unsigned char* extra() const { return variable.data() + nameSize; }

    ByteSource& archive;
    const std::string& place;
    const ZipOptions& limits;
    DirectoryEnd end;
    std::uint64_t position; ///< of what hasn't been read
    std::uint64_t entryNumber = 0;
    std::array<unsigned char, DIRECTORY_ENTRY_SIZE> fixed{};
    std::vector<unsigned char> variable; ///< name and extra fields
    std::size_t nameSize = 0;
};

ArchiveDirectory DirectoryReader::read() {
    if (end.itemCount > limits.maxItems)
        fail(place, "more than " + std::to_string(limits.maxItems) + " items", EFBIG);
    if (end.itemCount > end.size / DIRECTORY_ENTRY_SIZE)
        failDirectory(place, "too short for its number of items");
    ArchiveDirectory directory;
    directory.entries.reserve(static_cast<std::size_t>(end.itemCount));
    for (entryNumber = 1; entryNumber <= end.itemCount; ++entryNumber)
        directory.entries.push_back(readEntry());
    if (position != end.offset + end.size)
        failDirectory(place, "longer than its items");
    directory.comment = std::move(end.comment);
    return directory;
}

DirectoryEntry DirectoryReader::readEntry() {
    const std::uint64_t left = end.offset + end.size - position;
    if (left < fixed.size())
        failDirectory(place, "shorter than its items");
    readRecord(archive, place, position, fixed.data(), fixed.size());
    if (read32(fixed.data()) != DIRECTORY_ENTRY)
        failDirectory(place, "no entry where item " + std::to_string(entryNumber) + " should have one");
    nameSize = read16(&fixed[28]);
    const std::size_t variableSize = nameSize + read16(&fixed[30]);
    const std::size_t size = fixed.size() + variableSize + read16(&fixed[32]);
    if (left < size)
        failDirectory(place, "shorter than its items");
    if (nameSize > limits.maxNameLength)
        fail(entryPlace(),
             "its name has more bytes than the limit of " + std::to_string(limits.maxNameLength), EFBIG);
    variable.resize(variableSize);
    readRecord(archive, place, position + fixed.size(), variable.data(), variableSize);

    DirectoryEntry entry;
    entry.record = position;
    entry.flags = read16(&fixed[8]);
    entry.method = read16(&fixed[10]);
    entry.crc = read32(&fixed[16]);
    readName(entry);
    readNumbers(entry);
    checkNumbers(entry);
    position += size;
    return entry;
}

void DirectoryReader::readName(DirectoryEntry& entry) const {
    entry.name.assign(variable.begin(), variable.begin() + static_cast<std::ptrdiff_t>(nameSize));
    if (entry.name.find('\0') != std::string::npos)
        fail(entryPlace(), "a zero byte in its name", EBADMSG);
    const auto folders = std::count_if(entry.name.begin(), entry.name.end(), isSlash);
    if (static_cast<std::uint64_t>(folders) > limits.maxDepth)
        fail(entryPlace(), "deeper in folders than the limit of " + std::to_string(limits.maxDepth), EFBIG);
    if (isUTF8(entry.name))
        return;
    if (entry.flags & NAME_IS_UTF8)
        fail(entryPlace(), "its name isn't the UTF-8 that it is said to be", EBADMSG);
    entry.rawName = std::move(entry.name);
    entry.name = fromCodePage437(entry.rawName);
}

void DirectoryReader::readNumbers(DirectoryEntry& entry) const {
    entry.compressedSize = read32(&fixed[20]);
    entry.size = read32(&fixed[24]);
    entry.offset = read32(&fixed[42]);
    Zip64Field field(extra(), variable.size() - nameSize);
    if (!field.resolve(entry.size) || !field.resolve(entry.compressedSize) || !field.resolve(entry.offset))
        fail(itemPlace(place, entry.name), "its ZIP64 field is missing or too short", EBADMSG);
}

void DirectoryReader::checkNumbers(const DirectoryEntry& entry) const {
    const std::uint64_t header = LOCAL_HEADER_SIZE + nameSize;
    if (entry.offset > end.offset || end.offset - entry.offset < header ||
        end.offset - entry.offset - header < entry.compressedSize)
        fail(itemPlace(place, entry.name), "reaches beyond the items of the archive", EBADMSG);
    if (entry.method == STORE && !(entry.flags & ENCRYPTED) && entry.size != entry.compressedSize)
        fail(itemPlace(place, entry.name), "is stored, but its two sizes differ", EBADMSG);
}

/// Finds where each item ends, and raises if that is in the bytes of another one. How long extra fields of
/// local headers are isn't known here: reading an item finds those that are too long.
void findEnds(std::vector<DirectoryEntry>& entries, std::uint64_t directory, const std::string& place) {
    std::vector<ItemIndex> order(entries.size());
    std::iota(order.begin(), order.end(), 0U);
    const auto before = [&](ItemIndex a, ItemIndex b) { return entries[a].offset < entries[b].offset; };
    if (!std::is_sorted(order.begin(), order.end(), before))
        std::sort(order.begin(), order.end(), before);
    for (std::size_t i = 0; i < order.size(); ++i) {
        DirectoryEntry& entry = entries[order[i]];
        const DirectoryEntry* next = i + 1 < order.size() ? &entries[order[i + 1]] : nullptr;
        entry.end = next ? next->offset : directory;
        if (entry.end - entry.offset < LOCAL_HEADER_SIZE + entry.storedName().size() + entry.compressedSize)
            fail(itemPlace(place, entry.name), "overlaps with " + next->name, EBADMSG);
    }
}

} // namespace

ArchiveDirectory readDirectory(ByteSource& archive, const std::string& place, const ZipOptions& limits) {
    DirectoryReader reader(archive, place, limits);
    const std::uint64_t offset = reader.offset();
    ArchiveDirectory directory = reader.read();
    findEnds(directory.entries, offset, place);
    return directory;
}

} // namespace opc::physical::zip
