#include "DirectoryEnd.hpp"

#include "EndRecordSearch.hpp"
#include "Failure.hpp"
#include "ForeignFormat.hpp"
#include "RecordSignatures.hpp"
#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace opc::physical::zip {

namespace {

constexpr std::size_t LONGEST_COMMENT = 0xFFFF;

struct EndRecord {
    std::uint64_t offset = 0; ///< the offset of the record itself
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
            {read16(record + 10),
             read32(record + 16),
             read32(record + 12),
             {},
             offset + DIRECTORY_END_SIZE + read16(record + 20),
             {}}};
}

bool standsBehindItsDirectory(const EndRecord& end) {
    return end.directory.offset + end.directory.size == end.offset;
}

/// The last bytes of an archive, as many as can have an end record.
class Tail {
public:
    Tail(ByteSource& archive, const std::string& place)
        : size(static_cast<std::size_t>(
              std::min<std::uint64_t>(archive.size(), DIRECTORY_END_SIZE + LONGEST_COMMENT))),
          archiveSize(archive.size()), first(lookAtRecord(archive, place, archiveSize - size, buffer, size)) {
    }
    Tail(const Tail&) = delete;
    Tail& operator=(const Tail&) = delete;

    std::uint64_t archiveEnd() const { return archiveSize; }
    const unsigned char* begin() const { return first; }
    const unsigned char* end() const { return first + size; }
    const unsigned char* at(std::uint64_t offset) const { return end() - (archiveSize - offset); }
    std::uint64_t offsetOf(const unsigned char* byte) const {
        return archiveSize - static_cast<std::uint64_t>(end() - byte);
    }

private:
    std::vector<unsigned char> buffer; // for bytes that aren't in memory already
    std::size_t size;
    std::uint64_t archiveSize;
    const unsigned char* first;
};

/// All end records, from the last one to the first.
std::vector<EndRecord> findEndRecords(const Tail& tail) {
    constexpr std::size_t BEHIND_SIGNATURE = DIRECTORY_END_SIZE - sizeof DIRECTORY_END;
    std::vector<EndRecord> records;
    const unsigned char* record =
        tail.end() - std::min<std::ptrdiff_t>(tail.end() - tail.begin(), BEHIND_SIGNATURE);
    while ((record = findLastEndRecord(tail.begin(), record)) != nullptr)
        records.push_back(readEndRecord(record, tail.offsetOf(record)));
    return records;
}

/// Throws if no end record of an archive reaches to its end.
[[noreturn]] void failWithoutEnd(ByteSource& archive, const std::string& place,
                                 const std::vector<EndRecord>& records) {
    requireNoForeignFormat(archive, place);
    if (records.empty())
        failDirectory(place, "no end record: cut off, or not a ZIP archive");
    const std::uint64_t end = records.front().directory.archiveEnd;
    if (end > archive.size())
        failDirectory(place, "cut off within its comment");
    failDirectory(place, describeBytesBehind(archive.size() - end));
}

/// Whether all programs take `record` for the end of the archive although bytes follow it. Some do so only if it
/// follows its directory and the archive begins with an item; otherwise they take an end record in the content of an
/// item.
bool canBeFollowed(const EndRecord& record, ByteSource& archive, const std::string& place) {
    if (!standsBehindItsDirectory(record))
        return false;
    std::array<unsigned char, sizeof LOCAL_HEADER> start{};
    readRecord(archive, place, 0, start.data(), start.size());
    return read32(start.data()) == LOCAL_HEADER;
}

void requireNoRecordBehind(const Tail& tail, std::uint64_t offset, const std::string& place) {
    for (; offset + sizeof DIRECTORY_END <= tail.archiveEnd(); ++offset) {
        const std::uint32_t signature = read32(tail.at(offset));
        if (signature == DIRECTORY_END || signature == ZIP64_DIRECTORY_END || signature == ZIP64_LOCATOR)
            failDirectory(place, "another record stands behind the end record");
    }
}

/// Where the end records in contents say that directories are. A program that takes one of them for the end of the archive looks
/// there.
std::vector<std::uint64_t> findOtherDirectories(const Tail& tail, const std::vector<EndRecord>& others) {
    std::vector<std::uint64_t> all;
    for (const EndRecord& record : others) {
        all.push_back(record.directory.offset);
        const unsigned char* const end = tail.at(record.offset);
        if (end - tail.begin() >= std::ptrdiff_t{ZIP64_LOCATOR_SIZE} &&
            read32(end - ZIP64_LOCATOR_SIZE) == ZIP64_LOCATOR)
            all.push_back(read64(end - ZIP64_LOCATOR_SIZE + 8));
    }
    return all;
}

/// The only end record that reaches to the end of the archive. Some programs take the last one whatever its numbers
/// say, so the comment must not have one. One in the content of an item is refused only if it has everything that an
/// end needs, because an item can be an archive.
/// @param lenient  whether the last one may end earlier, if none reaches to the end
EndRecord findEndRecord(ByteSource& archive, const std::string& place, bool lenient) {
    const Tail tail(archive, place);
    std::vector<EndRecord> records = findEndRecords(tail);
    const auto reachesEnd = [&](const EndRecord& record) {
        return record.directory.archiveEnd == tail.archiveEnd();
    };
    const auto count = std::count_if(records.begin(), records.end(), reachesEnd);
    if (count > 1)
        failDirectory(place, "two end records");
    if (count == 0 &&
        (!lenient || records.empty() || records.front().directory.archiveEnd > tail.archiveEnd() ||
         !canBeFollowed(records.front(), archive, place)))
        failWithoutEnd(archive, place, records);
    EndRecord last = std::move(records.front());
    records.erase(records.begin());
    if ((count == 1 && !reachesEnd(last)) ||
        std::any_of(records.begin(), records.end(), standsBehindItsDirectory))
        failDirectory(place, "it can be understood in two ways");
    requireNoRecordBehind(tail, last.directory.archiveEnd, place);
    last.directory.comment.assign(tail.at(last.offset + DIRECTORY_END_SIZE),
                                  tail.at(last.directory.archiveEnd));
    last.directory.otherDirectories = findOtherDirectories(tail, records);
    last.directory.hidesRecord = hidesRecord(tail.at(last.offset), tail.at(last.directory.archiveEnd));
    return last;
}

/// The offset of the ZIP64 end record, which comes before its locator and has the numbers that don't fit into `end`;
/// nothing if there is none.
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
    constexpr std::uint64_t UNCOUNTED = 12; // the record's own size doesn't count signature and size
    if (read32(record) != ZIP64_DIRECTORY_END || read64(record + 4) != end - offset - UNCOUNTED)
        failDirectory(place, "the ZIP64 locator leads nowhere");
    // Programs that ignore the locator read the last bytes before it, which could be another record.
    if (end - offset != ZIP64_DIRECTORY_END_SIZE)
        failDirectory(place, "something stands behind the numbers of the ZIP64 end record");
    return {offset,
            read32(record + 16),
            read32(record + 20),
            read64(record + 24),
            {read64(record + 32), read64(record + 48), read64(record + 40), {}, 0, {}}};
}

/// Whether a number of the old record is the same as in the ZIP64 record, or refers to it.
bool agrees(std::uint64_t old, std::uint64_t noRoom, std::uint64_t value) {
    return old == noRoom || old == value;
}

void requireAgreement(const std::string& place, const EndRecord& old, const EndRecord& zip64) {
    if (!agrees(old.directory.itemCount, NO_ROOM_16, zip64.directory.itemCount) ||
        !agrees(old.directory.size, NO_ROOM_32, zip64.directory.size) ||
        !agrees(old.directory.offset, NO_ROOM_32, zip64.directory.offset))
        failDirectory(place, "the two end records differ");
}

/// Whether one of the two records in front of the end record hides another one.
bool hidesInZip64(ByteSource& archive, const std::string& place, std::uint64_t end) {
    std::array<unsigned char, ZIP64_DIRECTORY_END_SIZE + ZIP64_LOCATOR_SIZE> records{};
    readRecord(archive, place, end - records.size(), records.data(), records.size());
    const unsigned char* const locator = records.data() + ZIP64_DIRECTORY_END_SIZE;
    return hidesRecord(records.data(), locator) || hidesRecord(locator, locator + ZIP64_LOCATOR_SIZE);
}

/// Whether a number says that it is in a ZIP64 record.
bool refersToZip64(const EndRecord& end) {
    return end.directory.itemCount == NO_ROOM_16 || end.directory.size == NO_ROOM_32 ||
           end.directory.offset == NO_ROOM_32;
}

} // namespace

DirectoryEnd readDirectoryEnd(ByteSource& archive, const std::string& place, bool lenient) {
    EndRecord end = findEndRecord(archive, place, lenient);
    if (const auto zip64 = locateZip64(archive, place, end)) {
        EndRecord large = readZip64EndRecord(archive, place, *zip64, end.offset - ZIP64_LOCATOR_SIZE);
        requireAgreement(place, end, large);
        large.directory.comment = std::move(end.directory.comment);
        large.directory.archiveEnd = end.directory.archiveEnd;
        large.directory.otherDirectories = std::move(end.directory.otherDirectories);
        large.directory.hidesRecord = end.directory.hidesRecord || hidesInZip64(archive, place, end.offset);
        end = std::move(large);
    } else {
        end.directory.lacksZip64 = refersToZip64(end);
    }
    const DirectoryEnd& directory = end.directory;
    if (end.disk != 0 || end.directoryDisk != 0 || end.itemCountOnDisk != directory.itemCount)
        fail(place, "is one of several files that make up an archive", ENOTSUP);
    if (directory.size > end.offset || directory.offset != end.offset - directory.size) {
        requireNoForeignFormat(archive, place);
        failDirectory(place, "it doesn't lie where the end record says");
    }
    return end.directory;
}

std::string describeBytesBehind(std::uint64_t count) {
    return (count == 1 ? "1 byte stands" : std::to_string(count) + " bytes stand") +
           " behind the end of the archive";
}

void failDirectory(const std::string& place, const std::string& what) {
    fail(place, "can't read the directory of the archive: " + what, EBADMSG);
}

const unsigned char* lookAtRecord(ByteSource& archive, const std::string& place, std::uint64_t offset,
                                  std::vector<unsigned char>& buffer, std::size_t count) {
    if (const unsigned char* bytes = archive.inMemory())
        return bytes + offset;
    if (buffer.size() < count)
        buffer.resize(count);
    readRecord(archive, place, offset, buffer.data(), count);
    return buffer.data();
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
