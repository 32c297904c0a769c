#include "ArchiveDirectory.hpp"

#include "DirectoryEnd.hpp"
#include "ExtraFields.hpp"
#include "Failure.hpp"
#include "ItemKind.hpp"
#include "NameText.hpp"
#include "RecordSignatures.hpp"
#include "Records.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace opc::physical::zip {

namespace {

constexpr std::size_t MOST_FOR_SIGNED_NUMBERS = 32767;
constexpr const char* IS_NEGATIVE =
    " has so many bytes that some programs take their number for a negative one";

bool isSlash(char c) {
    return c == '/' || c == '\\';
}

std::string commentOf(std::size_t size) {
    return "a comment of " + std::to_string(size) + " bytes";
}

class DirectoryReader {
public:
    DirectoryReader(ByteSource& archive, const std::string& place, const ZipOptions& options,
                    ArchiveDirectory& directory)
        : archive(archive), place(place), options(options), directory(directory),
          end(readDirectoryEnd(archive, place, options.lenient)), position(end.offset) {}

    void read();

private:
    void readEntry();
    void inspect(const unsigned char* record);
    const unsigned char* lookAt(std::size_t count);
    void readName(std::string_view stored, DirectoryEntry& entry);
    void readNumbers(const unsigned char* record, DirectoryEntry& entry) const;
    void checkNumbers(const DirectoryEntry& entry) const;
    std::string_view keep(std::string_view name);

    /// How messages name an item whose name can't be shown.
    std::string entryPlace() const { return itemPlace(place, "item " + std::to_string(entryNumber)); }

    ByteSource& archive;
    const std::string& place;
    const ZipOptions& options;
    ArchiveDirectory& directory;
    DirectoryEnd end;
    std::uint64_t position; ///< of the entry to read
    std::uint64_t entryNumber = 0;
    std::vector<unsigned char> buffer;
    const unsigned char* block = nullptr; ///< the directory is read in blocks of this size
    std::uint64_t blockStart = 0;
    std::size_t blockSize = 0;
};

void DirectoryReader::read() {
    if (end.itemCount > options.maxItems)
        fail(place, "more than " + std::to_string(options.maxItems) + " items", EFBIG);
    if (end.size > options.maxDirectorySize)
        fail(place, "a directory of more than " + std::to_string(options.maxDirectorySize) + " bytes", EFBIG);
    if (end.itemCount > end.size / DIRECTORY_ENTRY_SIZE)
        failDirectory(place, "too short for its number of items");
    directory.entries.reserve(static_cast<std::size_t>(end.itemCount));
    for (entryNumber = 1; entryNumber <= end.itemCount; ++entryNumber)
        readEntry();
    if (position != end.offset + end.size)
        failDirectory(place, "longer than its items");
    directory.start = end.offset;
    directory.end = position;
    directory.archiveEnd = end.archiveEnd;
    directory.otherDirectories = std::move(end.otherDirectories);
    if (end.hidesRecord)
        directory.ambiguities.push_back({{}, "it" + std::string(HOLDS_A_MARK), true});
    if (end.lacksZip64)
        directory.ambiguities.push_back({{}, "its numbers refer to a ZIP64 record that isn't there", true});
    if (!end.comment.empty())
        directory.unread.push_back({{}, commentOf(end.comment.size()) + " on the archive", false});
    directory.comment = std::move(end.comment);
}

void DirectoryReader::readEntry() {
    const unsigned char* record = lookAt(DIRECTORY_ENTRY_SIZE);
    if (read32(record) != DIRECTORY_ENTRY)
        failDirectory(place, "no entry where item " + std::to_string(entryNumber) + " should have one");
    const std::size_t size = directoryEntrySizeOf(record);
    record = lookAt(size);
    if (directoryEntrySizeOf(record) != size) // another program may be writing to the file
        failDirectory(place, "it has just been changed");
    const std::size_t nameSize = read16(record + 28);
    if (nameSize > options.maxNameLength)
        fail(entryPlace(),
             "its name has more bytes than the limit of " + std::to_string(options.maxNameLength), EFBIG);
    DirectoryEntry entry;
    entry.record = position;
    entry.flags = read16(record + 8);
    entry.method = read16(record + 10);
    entry.crc = read32(record + 16);
    readName({reinterpret_cast<const char*>(record) + DIRECTORY_ENTRY_SIZE, nameSize}, entry);
    readNumbers(record, entry);
    checkNumbers(entry);
    directory.entries.push_back(entry);
    inspect(record);
    position += size;
}

/// Records what an entry has beside the data that reading needs.
void DirectoryReader::inspect(const unsigned char* record) {
    const auto item = static_cast<ItemIndex>(directory.entries.size() - 1);
    if (const char* const kind = kindByAttributes(read32(record + 38), directory.entries[item].name))
        directory.ambiguities.push_back({item, std::string("by its attributes it is ") + kind});
    if (asksForMore(read16(record + 6), read16(record + 8)))
        directory.ambiguities.push_back({item, ASKS_FOR_MORE});
    if (read16(record + 34) != 0)
        directory.ambiguities.push_back({item, "it is said to be in another file of several"});
    if (hidesRecord(record, record + directoryEntrySizeOf(record)))
        directory.ambiguities.push_back(
            {item, "its record in the directory" + std::string(HOLDS_A_MARK), true});
    const unsigned char* const extra = record + DIRECTORY_ENTRY_SIZE + read16(record + 28);
    inspectFields(extra, read16(record + 30), item, "its record in the directory", place, directory);
    const std::size_t size = read16(record + 32);
    if (size > MOST_FOR_SIGNED_NUMBERS)
        directory.ambiguities.push_back({item, "its comment" + std::string(IS_NEGATIVE), true});
    if (size != 0)
        directory.unread.push_back({std::string(directory.entries[item].name), commentOf(size), false});
}

/// @return the next `count` bytes of the directory, valid until the next call
const unsigned char* DirectoryReader::lookAt(std::size_t count) {
    constexpr std::size_t BLOCK = std::size_t{256} * 1024; // room for the longest entry: 46 + 3 * 65535 bytes
    const std::uint64_t left = end.offset + end.size - position;
    if (left < count)
        failDirectory(place, "shorter than its items");
    if (position + count > blockStart + blockSize) {
        blockSize = static_cast<std::size_t>(std::min<std::uint64_t>(left, BLOCK));
        blockStart = position;
        block = lookAtRecord(archive, place, blockStart, buffer, blockSize);
    }
    return block + (position - blockStart);
}

void DirectoryReader::readName(std::string_view stored, DirectoryEntry& entry) {
    if (stored.find('\0') != std::string_view::npos)
        fail(entryPlace(), "a zero byte in its name", EBADMSG);
    const auto folders = std::count_if(stored.begin(), stored.end(), isSlash);
    if (static_cast<std::uint64_t>(folders) > options.maxDepth)
        fail(entryPlace(), "deeper in folders than the limit of " + std::to_string(options.maxDepth), EFBIG);
    entry.name = keep(stored);
    if (isUTF8(stored))
        return;
    if (entry.flags & NAME_IS_UTF8)
        fail(entryPlace(), "its name isn't the UTF-8 that it is said to be", EBADMSG);
    entry.rawName = entry.name;
    entry.name = keep(fromCodePage437(stored));
}

std::string_view DirectoryReader::keep(std::string_view name) {
    auto* bytes = static_cast<char*>(directory.names.allocate(name.size(), 1));
    std::copy(name.begin(), name.end(), bytes);
    return {bytes, name.size()};
}

void DirectoryReader::readNumbers(const unsigned char* record, DirectoryEntry& entry) const {
    entry.compressedSize = read32(record + 20);
    entry.size = read32(record + 24);
    entry.offset = read32(record + 42);
    Zip64Field field(record + DIRECTORY_ENTRY_SIZE + entry.storedName().size(), read16(record + 30));
    if (!field.resolve(entry.size) || !field.resolve(entry.compressedSize) || !field.resolve(entry.offset))
        fail(itemPlace(place, entry.name), "its ZIP64 field is missing or too short", EBADMSG);
}

void DirectoryReader::checkNumbers(const DirectoryEntry& entry) const {
    const std::uint64_t header = LOCAL_HEADER_SIZE + entry.storedName().size();
    if (entry.offset > end.offset || end.offset - entry.offset < header ||
        end.offset - entry.offset - header < entry.compressedSize)
        fail(itemPlace(place, entry.name), "reaches beyond the items of the archive", EBADMSG);
    if (entry.method == STORE && !(entry.flags & ENCRYPTED) && entry.size != entry.compressedSize)
        fail(itemPlace(place, entry.name), "is stored, but its two sizes differ", EBADMSG);
}

constexpr const char* OTHER_PATH = "a Unicode Path field gives it another name";

} // namespace

bool asksForMore(std::uint16_t version, std::uint16_t flags) {
    constexpr unsigned ZIP64_VERSION = 45; // of a program that reads ZIP64, in tenths
    constexpr unsigned VMS = 2;            // the system that the program must have
    constexpr unsigned COMPRESSION_LEVEL = 3U << 1U;
    return (version & 0xFFU) > ZIP64_VERSION || version >> 8U == VMS ||
           (flags & ~(COMPRESSION_LEVEL | DATA_DESCRIPTOR | NAME_IS_UTF8 | ENCRYPTION_FLAGS)) != 0;
}

std::string whyUnreadable(const DirectoryEntry& entry) {
    if (entry.flags & ENCRYPTION_FLAGS)
        return "is encrypted";
    if (entry.method != STORE && entry.method != DEFLATE)
        return "has compression method " + std::to_string(entry.method) +
               "; Store and Deflate alone are read";
    return {};
}

bool exceedsRatio(const DirectoryEntry& entry, const ZipOptions& options) {
    return entry.size > options.ratioFloor &&
           entry.size / std::max<std::uint64_t>(options.maxRatio, 1) > entry.compressedSize;
}

void inspectFields(const unsigned char* extra, std::size_t size, ItemIndex item, const char* record,
                   const std::string& place, ArchiveDirectory& directory) {
    if (size == 0)
        return;
    const DirectoryEntry& entry = directory.entries[item];
    const auto note = [&](const char* what) {
        directory.unread.push_back({std::string(entry.name), record + std::string(what), false});
    };
    if (size > MOST_FOR_SIGNED_NUMBERS)
        directory.ambiguities.push_back({item, record + std::string(IS_NEGATIVE), true});
    bool hasPath = false;
    bool hasNumbers = false;
    ExtraFieldWalk walk(extra, size);
    for (ExtraField field; walk.next(field);) {
        if (field.kind == STRONG_ENCRYPTION_FIELD && !(entry.flags & ENCRYPTION_FLAGS))
            fail(itemPlace(place, entry.name), "is encrypted", ENOTSUP);
        if (field.kind == ZIP64_FIELD &&
            (std::exchange(hasNumbers, true) ||
             hasOtherNumbers(field, entry.flags, entry.size, entry.compressedSize, entry.offset)))
            directory.ambiguities.push_back({item, "its ZIP64 field has other numbers"});
        if (field.kind != UNICODE_PATH_FIELD)
            continue;
        if (std::exchange(hasPath, true)) // thousands of them would take too much memory
            fail(itemPlace(place, entry.name), "two Unicode Path fields", EBADMSG);
        if (unicodePath(field) != entry.name) {
            directory.otherNames.push_back({item, std::string(unicodePath(field))});
            directory.ambiguities.push_back({item, OTHER_PATH});
            note(" gives it another name in a Unicode Path field");
        }
    }
    if (walk.isCutOff(UNICODE_PATH_FIELD))
        directory.ambiguities.push_back({item, OTHER_PATH});
    else if (holdsOtherMeaning(extra, size))
        directory.ambiguities.push_back({item, record + std::string(" holds data of an unknown kind")});
    if (holdsUnknownData(extra, size))
        note(" holds data in extra fields of unknown kind");
}

void readDirectory(ByteSource& archive, const std::string& place, const ZipOptions& options,
                   ArchiveDirectory& directory) {
    DirectoryReader(archive, place, options, directory).read();
}

} // namespace opc::physical::zip
