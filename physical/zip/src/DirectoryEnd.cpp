#include "DirectoryEnd.hpp"

#include "Failure.hpp"
#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <vector>

namespace opc::physical::zip {

namespace {

constexpr std::size_t LONGEST_COMMENT = 0xFFFF;

struct EndRecord {
    std::uint64_t offset = 0; ///< of the record itself
    std::uint64_t disk = 0;
    std::uint64_t directoryDisk = 0;
    std::uint64_t itemCountOnDisk = 0;
    DirectoryEnd directory;
};

EndRecord readEndRecord(const unsigned char* record, std::uint64_t offset) {
    return {offset,
            read16(record + 4),
            read16(record + 6),
            read16(record + 8),
            {read16(record + 10), read32(record + 16), read32(record + 12), {}}};
}

bool standsBehindItsDirectory(const EndRecord& end) {
    return end.directory.offset + end.directory.size == end.offset;
}

/// The one end record that reaches to the end of the archive. Some programs take the last one, whatever its
/// numbers say: so there may be none in the comment. One in the content of an item is only refused with all that
/// it needs to be taken for the end: an archive that is an item has one.
EndRecord findEndRecord(ByteSource& archive, const std::string& place) {
    const std::uint64_t size = archive.size();
    const auto tailSize =
        static_cast<std::size_t>(std::min<std::uint64_t>(size, DIRECTORY_END_SIZE + LONGEST_COMMENT));
    std::vector<unsigned char> tail(tailSize);
    readRecord(archive, place, size - tailSize, tail.data(), tailSize);
    std::optional<EndRecord> found;
    bool isAmbiguous = false;
    for (std::size_t left = DIRECTORY_END_SIZE; left <= tailSize; ++left) {
        const unsigned char* record = tail.data() + (tailSize - left);
        if (read32(record) != DIRECTORY_END)
            continue;
        EndRecord end = readEndRecord(record, size - left);
        if (DIRECTORY_END_SIZE + read16(record + 20) != left) {
            isAmbiguous = isAmbiguous || !found || standsBehindItsDirectory(end);
            continue;
        }
        if (found)
            failDirectory(place, "two end records");
        end.directory.comment.assign(record + DIRECTORY_END_SIZE, record + left);
        found = std::move(end);
    }
    if (!found)
        failDirectory(place, "no end record: not a ZIP archive, cut off, or something behind it");
    if (isAmbiguous)
        failDirectory(place, "it can be understood in two ways");
    return *found;
}

/// The offset of the ZIP64 end record, which stands in front of its locator and says more than `end` has room
/// for; nothing if there is none.
std::optional<std::uint64_t> locateZip64(ByteSource& archive, const std::string& place,
                                         const EndRecord& end) {
    if (end.offset < ZIP64_LOCATOR_SIZE + ZIP64_DIRECTORY_END_SIZE)
        return std::nullopt;
    const std::uint64_t locatorOffset = end.offset - ZIP64_LOCATOR_SIZE;
    std::array<unsigned char, ZIP64_LOCATOR_SIZE> locator{};
    readRecord(archive, place, locatorOffset, locator.data(), locator.size());
    if (read32(locator.data()) != ZIP64_LOCATOR)
        return std::nullopt;
    const std::uint64_t offset = read64(locator.data() + 8);
    if (offset > locatorOffset - ZIP64_DIRECTORY_END_SIZE)
        failDirectory(place, "the ZIP64 locator leads nowhere");
    return offset;
}

EndRecord readZip64EndRecord(ByteSource& archive, const std::string& place, std::uint64_t offset,
                             std::uint64_t end) {
    std::array<unsigned char, ZIP64_DIRECTORY_END_SIZE> bytes{};
    readRecord(archive, place, offset, bytes.data(), bytes.size());
    const unsigned char* record = bytes.data();
    constexpr std::uint64_t UNCOUNTED = 12; // signature and size don't count in the record's size
    if (read32(record) != ZIP64_DIRECTORY_END || read64(record + 4) != end - offset - UNCOUNTED)
        failDirectory(place, "the ZIP64 locator leads nowhere");
    // Programs that don't go by the locator read the last bytes in front of it, which could be another record.
    if (end - offset != ZIP64_DIRECTORY_END_SIZE)
        failDirectory(place, "something stands behind the numbers of the ZIP64 end record");
    return {offset,
            read32(record + 16),
            read32(record + 20),
            read64(record + 24),
            {read64(record + 32), read64(record + 48), read64(record + 40), {}}};
}

/// Whether a number of the old record says the same as that of the ZIP64 record, or that it has no room.
bool agrees(std::uint64_t old, std::uint64_t noRoom, std::uint64_t value) {
    return old == noRoom || old == value;
}

void requireAgreement(const std::string& place, const EndRecord& old, const EndRecord& zip64) {
    if (!agrees(old.directory.itemCount, NO_ROOM_16, zip64.directory.itemCount) ||
        !agrees(old.directory.size, NO_ROOM_32, zip64.directory.size) ||
        !agrees(old.directory.offset, NO_ROOM_32, zip64.directory.offset))
        failDirectory(place, "the two end records differ");
}

} // namespace

DirectoryEnd readDirectoryEnd(ByteSource& archive, const std::string& place) {
    EndRecord end = findEndRecord(archive, place);
    if (const auto zip64 = locateZip64(archive, place, end)) {
        EndRecord large = readZip64EndRecord(archive, place, *zip64, end.offset - ZIP64_LOCATOR_SIZE);
        requireAgreement(place, end, large);
        large.directory.comment = std::move(end.directory.comment);
        end = std::move(large);
    }
    const DirectoryEnd& directory = end.directory;
    if (end.disk != 0 || end.directoryDisk != 0 || end.itemCountOnDisk != directory.itemCount)
        fail(place, "is one of several files that make up an archive", ENOTSUP);
    if (directory.size > end.offset || directory.offset != end.offset - directory.size)
        failDirectory(place, "it doesn't lie where the end record says");
    return end.directory;
}

void failDirectory(const std::string& place, const std::string& what) {
    fail(place, "can't read the directory of the archive: " + what, EBADMSG);
}

void readRecord(ByteSource& archive, const std::string& place, std::uint64_t offset, unsigned char* buffer,
                std::size_t count) {
    std::size_t got = 0;
    if (const int error = archive.readAt(offset, buffer, count, got))
        failSystem(place, "can't read the directory of the archive", error);
    if (got != count)
        failDirectory(place, "cut off");
}

} // namespace opc::physical::zip
