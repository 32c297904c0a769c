#include "archive/EndRecords.hpp"

#include "zip/src/EndRecordSearch.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

namespace opc::inspection::archive {

using namespace physical::zip;

namespace {

constexpr std::uint64_t LONGEST_TAIL = DIRECTORY_END_SIZE + 0xFFFF;

struct EndRecord {
    std::uint64_t offset;
    std::uint64_t end; ///< behind its comment
    std::uint64_t disk, directoryDisk, countOnDisk;
    std::uint64_t count, directorySize, directoryOffset;

    bool standsBehindItsDirectory() const { return directoryOffset + directorySize == offset; }
};

EndRecord parse(const unsigned char* record, std::uint64_t offset) {
    return {offset,
            offset + DIRECTORY_END_SIZE + read16(record + 20),
            read16(record + 4),
            read16(record + 6),
            read16(record + 8),
            read16(record + 10),
            read32(record + 12),
            read32(record + 16)};
}

/// All that look like end records, the last one first.
std::vector<EndRecord> findRecords(RecordBytes& bytes) {
    const std::size_t size = bytes.available(0, LONGEST_TAIL);
    const std::uint64_t start = bytes.size() - size;
    const unsigned char* const tail = bytes.look(start, size);
    std::vector<EndRecord> records;
    if (!tail || size < DIRECTORY_END_SIZE)
        return records;
    const unsigned char* record = tail + (size - DIRECTORY_END_SIZE + sizeof DIRECTORY_END);
    while ((record = findLastEndRecord(tail, record)) != nullptr)
        records.push_back(parse(record, start + static_cast<std::uint64_t>(record - tail)));
    return records;
}

std::string numberOf(std::uint64_t count, const char* one) {
    return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

class EndReader {
public:
    EndReader(RecordBytes& bytes, ArchiveContents& contents) : bytes(bytes), contents(contents) {}

    std::optional<DirectoryPlace> read();

private:
    const EndRecord* choose(const std::vector<EndRecord>& records);
    void readComment(const EndRecord& end);
    void readZip64(EndRecord& end);
    void takeZip64(const unsigned char* record, EndRecord& end);
    std::optional<DirectoryPlace> locate(const EndRecord& end);
    bool isEntry(std::uint64_t offset) {
        const unsigned char* record = bytes.look(offset, DIRECTORY_ENTRY_SIZE);
        return record && read32(record) == DIRECTORY_ENTRY;
    }
    void fault(std::string_view rule, std::uint64_t offset, std::string message) {
        contents.addFault(rule, std::nullopt, offset, std::move(message));
    }

    RecordBytes& bytes;
    ArchiveContents& contents;
    std::uint64_t recordsStart = 0; ///< of the end record, or of the ZIP64 record in front of it
};

std::optional<DirectoryPlace> EndReader::read() {
    const std::vector<EndRecord> records = findRecords(bytes);
    const EndRecord* const chosen = choose(records);
    if (!chosen)
        return std::nullopt;
    EndRecord end = *chosen;
    recordsStart = end.offset;
    readComment(end);
    readZip64(end);
    contents.endRecords = {recordsStart, std::min(end.end, bytes.size())};
    if (end.disk != 0 || end.directoryDisk != 0 || end.countOnDisk != end.count)
        fault("M3.17", end.offset, "The archive says that it is one of several files");
    return locate(end);
}

/// The last record that reaches to the end of the archive; else the last one. An archive that is the last item, stored, has
/// records of its own: they count only where their directory stands right in front of them.
const EndRecord* EndReader::choose(const std::vector<EndRecord>& records) {
    if (records.empty())
        return nullptr;
    const auto reachesEnd = [this](const EndRecord& record) { return record.end == bytes.size(); };
    const auto found = std::find_if(records.begin(), records.end(), reachesEnd);
    const EndRecord& chosen = found == records.end() ? records.front() : *found;
    if (chosen.end > bytes.size())
        fault("M3.16", chosen.offset, "The comment of the archive is cut off");
    for (const EndRecord& other : records) {
        if (&other == &chosen ||
            (&other > &chosen && !reachesEnd(other) && !other.standsBehindItsDirectory()))
            continue;
        fault("SEC-50", other.offset, "A second end record: programs differ on which one counts");
        break;
    }
    return &chosen;
}

void EndReader::readComment(const EndRecord& end) {
    const std::uint64_t start = end.offset + DIRECTORY_END_SIZE;
    const std::size_t size = bytes.available(start, end.end - start);
    if (const unsigned char* comment = bytes.look(start, size))
        contents.comment.assign(reinterpret_cast<const char*>(comment), size);
}

/// Takes over the numbers of the ZIP64 record that stands in front of the end record, if there is one.
void EndReader::readZip64(EndRecord& end) {
    if (end.offset < ZIP64_LOCATOR_SIZE)
        return;
    const std::uint64_t locatorOffset = end.offset - ZIP64_LOCATOR_SIZE;
    const unsigned char* locator = bytes.look(locatorOffset, ZIP64_LOCATOR_SIZE);
    if (!locator || read32(locator) != ZIP64_LOCATOR)
        return;
    const std::uint64_t stated = read64(locator + 8);
    recordsStart = locatorOffset;
    for (const std::uint64_t offset : {stated, locatorOffset - ZIP64_DIRECTORY_END_SIZE}) {
        const unsigned char* record =
            offset < locatorOffset ? bytes.look(offset, ZIP64_DIRECTORY_END_SIZE) : nullptr;
        if (!record || read32(record) != ZIP64_DIRECTORY_END)
            continue;
        const std::uint64_t statedSize = read64(record + 4);
        takeZip64(record, end);
        recordsStart = offset;
        constexpr std::uint64_t UNCOUNTED = 12; // signature and size don't count in the record's size
        if (offset != stated)
            fault("SEC-50", locatorOffset, "The ZIP64 locator doesn't lead to the record in front of it");
        else if (locatorOffset - offset != ZIP64_DIRECTORY_END_SIZE ||
                 statedSize != ZIP64_DIRECTORY_END_SIZE - UNCOUNTED)
            fault("SEC-50", offset, "The ZIP64 end record has another size than its numbers");
        return;
    }
    fault("M3.16", locatorOffset, "The ZIP64 locator leads to no record");
}

void EndReader::takeZip64(const unsigned char* record, EndRecord& end) {
    const EndRecord large{end.offset,          end.end,
                          read32(record + 16), read32(record + 20),
                          read64(record + 24), read64(record + 32),
                          read64(record + 40), read64(record + 48)};
    const auto differs = [](std::uint64_t old, std::uint64_t noRoom, std::uint64_t value) {
        return old != noRoom && old != value;
    };
    if (differs(end.count, NO_ROOM_16, large.count) ||
        differs(end.directorySize, NO_ROOM_32, large.directorySize) ||
        differs(end.directoryOffset, NO_ROOM_32, large.directoryOffset))
        fault("SEC-50", end.offset, "The end record and the ZIP64 end record differ");
    end = large;
}

/// The directory is where the records say, or right in front of them.
std::optional<DirectoryPlace> EndReader::locate(const EndRecord& end) {
    const std::uint64_t size = end.directorySize;
    const std::uint64_t behind = recordsStart;
    if (end.count == 0 && size == 0)
        return DirectoryPlace{std::min(end.directoryOffset, behind), std::min(end.directoryOffset, behind), 0,
                              0};
    if (end.directoryOffset <= behind && size <= behind - end.directoryOffset && isEntry(end.directoryOffset))
        return DirectoryPlace{end.directoryOffset, end.directoryOffset + size, end.count, 0};
    if (size <= behind && isEntry(behind - size))
        return DirectoryPlace{behind - size, behind, end.count, behind - size - end.directoryOffset};
    fault("M3.16", end.offset,
          "The directory of " + numberOf(end.count, "item") + " doesn't lie where the end record says");
    return std::nullopt;
}

} // namespace

std::optional<DirectoryPlace> readEndRecords(RecordBytes& bytes, ArchiveContents& contents) {
    return EndReader(bytes, contents).read();
}

} // namespace opc::inspection::archive
