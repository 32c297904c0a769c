#include "RecordWriting.hpp"

#include "ExtraFields.hpp"
#include "Records.hpp"

#include <algorithm>
#include <array>
#include <ctime>

namespace opc::physical::zip {

namespace {

constexpr unsigned VERSION = 20;       ///< 2.0: Deflate
constexpr unsigned ZIP64_VERSION = 45; ///< 4.5
constexpr unsigned MADE_ON_UNIX = 3U << 8;
constexpr std::uint32_t READABLE_FILE = 0100644U << 16; ///< the permissions of an unpacked file

/// Contents of this size or more get room for 64-bit sizes before they are written. The limit leaves some room,
/// because Deflate makes incompressible data a little larger.
constexpr std::uint64_t LARGE = 0xF0000000;

bool isLarge(const DirectoryEntry& entry) {
    return entry.size >= LARGE;
}

std::uint64_t atMost(std::uint64_t value, std::uint64_t noRoom) {
    return std::min(value, noRoom);
}

/// A ZIP64 field of these numbers, or nothing if there are none.
std::string zip64Field(const std::string& numbers) {
    if (numbers.empty())
        return {};
    std::string field;
    appendNumber(field, ZIP64_FIELD, 2);
    appendNumber(field, numbers.size(), 2);
    return field + numbers;
}

/// What a local header and a directory entry have in common, from the needed version to the size of the name.
void appendCommon(std::string& record, const DirectoryEntry& entry, std::uint32_t time, bool zip64) {
    appendNumber(record, zip64 ? ZIP64_VERSION : VERSION, 2);
    appendNumber(record, entry.flags, 2);
    appendNumber(record, entry.method, 2);
    appendNumber(record, time, 4);
    appendNumber(record, entry.crc, 4);
    appendNumber(record, isLarge(entry) ? NO_ROOM_32 : entry.compressedSize, 4);
    appendNumber(record, isLarge(entry) ? NO_ROOM_32 : entry.size, 4);
    appendNumber(record, entry.storedName().size(), 2);
}

std::string largeSizes(const DirectoryEntry& entry) {
    std::string numbers;
    if (isLarge(entry)) {
        appendNumber(numbers, entry.size, 8);
        appendNumber(numbers, entry.compressedSize, 8);
    }
    return numbers;
}

std::uint32_t toDOS(const std::tm& calendar) {
    if (calendar.tm_year < 80)
        return DOS_TIME_ORIGIN;
    if (calendar.tm_year > 80 + 127)
        return DOS_TIME_END;
    const int date = (calendar.tm_year - 80) << 9 | (calendar.tm_mon + 1) << 5 | calendar.tm_mday;
    const int time = calendar.tm_hour << 11 | calendar.tm_min << 5 | calendar.tm_sec / 2;
    return static_cast<std::uint32_t>(date) << 16 | static_cast<std::uint32_t>(time);
}

int daysOf(int year, int month) {
    constexpr std::array<int, 12> DAYS{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return DAYS[static_cast<std::size_t>(month)] + (month == 1 && isLeapYear ? 1 : 0);
}

/// In UTC. A `time_t` of 32 bits ends in 2038.
/// @param seconds  since 1970; times before it, and after the last year of DOS, give these
std::tm toCalendar(std::int64_t seconds) {
    constexpr std::int64_t DAY = 24 * 60 * 60;
    constexpr std::int64_t END = 4354819200; // of 2107
    const std::int64_t within = std::clamp<std::int64_t>(seconds, 0, END);
    auto days = static_cast<int>(within / DAY);
    const auto time = static_cast<int>(within % DAY);
    int year = 1970;
    int month = 0;
    while (days >= daysOf(year, month)) {
        days -= daysOf(year, month);
        month = (month + 1) % 12;
        year += month == 0 ? 1 : 0;
    }
    std::tm calendar{};
    calendar.tm_year = year - 1900;
    calendar.tm_mon = month;
    calendar.tm_mday = days + 1;
    calendar.tm_hour = time / 3600;
    calendar.tm_min = time / 60 % 60;
    calendar.tm_sec = time % 60;
    return calendar;
}

} // namespace

std::uint32_t dosTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    return ::localtime_r(&now, &local) ? toDOS(local) : DOS_TIME_ORIGIN;
}

std::uint32_t dosTimeOf(std::int64_t seconds) {
    return toDOS(toCalendar(seconds));
}

std::string localHeader(const DirectoryEntry& entry, std::uint32_t time) {
    const std::string extra = zip64Field(largeSizes(entry));
    std::string header;
    header.reserve(localHeaderSize(entry));
    appendNumber(header, LOCAL_HEADER, 4);
    appendCommon(header, entry, time, isLarge(entry));
    appendNumber(header, extra.size(), 2);
    header += entry.storedName();
    return header += extra;
}

std::size_t localHeaderSize(const DirectoryEntry& entry) {
    constexpr std::size_t LARGE_SIZES = 4 + 2 * 8; // the ZIP64 field
    return LOCAL_HEADER_SIZE + entry.storedName().size() + (isLarge(entry) ? LARGE_SIZES : 0);
}

void appendRecord(std::string& directory, const DirectoryEntry& entry, std::uint32_t time) {
    std::string numbers = largeSizes(entry);
    if (entry.offset >= NO_ROOM_32)
        appendNumber(numbers, entry.offset, 8);
    const std::string extra = zip64Field(numbers);
    appendNumber(directory, DIRECTORY_ENTRY, 4);
    appendNumber(directory, MADE_ON_UNIX | VERSION, 2);
    appendCommon(directory, entry, time, !extra.empty());
    appendNumber(directory, extra.size(), 2);
    appendNumber(directory, 0, 6); // size of the comment, disk, internal attributes
    appendNumber(directory, READABLE_FILE, 4);
    appendNumber(directory, atMost(entry.offset, NO_ROOM_32), 4);
    directory += entry.storedName();
    directory += extra;
}

void appendMovedRecord(std::string& directory, std::string_view record, std::uint64_t offset) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(record.data());
    const std::size_t extraStart = DIRECTORY_ENTRY_SIZE + read16(bytes + 28);
    const std::size_t extraSize = read16(bytes + 30);
    std::uint64_t size = read32(bytes + 24);
    std::uint64_t compressedSize = read32(bytes + 20);
    // Numbers that were in the ZIP64 field stay there, because the local header has them in the same way.
    std::string numbers;
    Zip64Field field(bytes + extraStart, extraSize);
    for (std::uint64_t* number : {&size, &compressedSize}) {
        if (*number == NO_ROOM_32 && field.resolve(*number))
            appendNumber(numbers, *number, 8);
    }
    if (offset >= NO_ROOM_32)
        appendNumber(numbers, offset, 8);
    const std::string extra = zip64Field(numbers) + withoutZip64Field(record.substr(extraStart, extraSize));
    directory += record.substr(0, 30);
    appendNumber(directory, extra.size(), 2);
    directory += record.substr(32, 10);
    appendNumber(directory, atMost(offset, NO_ROOM_32), 4);
    directory += record.substr(DIRECTORY_ENTRY_SIZE, extraStart - DIRECTORY_ENTRY_SIZE);
    directory += extra;
    directory += record.substr(extraStart + extraSize);
}

std::string endRecords(std::uint64_t itemCount, std::uint64_t directoryOffset, std::uint64_t directorySize,
                       const std::string& comment) {
    std::string records;
    if (itemCount >= NO_ROOM_16 || directoryOffset >= NO_ROOM_32 || directorySize >= NO_ROOM_32) {
        constexpr std::uint64_t UNCOUNTED = 12; // the record's own size doesn't count signature and size
        appendNumber(records, ZIP64_DIRECTORY_END, 4);
        appendNumber(records, ZIP64_DIRECTORY_END_SIZE - UNCOUNTED, 8);
        appendNumber(records, MADE_ON_UNIX | ZIP64_VERSION, 2);
        appendNumber(records, ZIP64_VERSION, 2);
        appendNumber(records, 0, 8); // disks
        appendNumber(records, itemCount, 8);
        appendNumber(records, itemCount, 8);
        appendNumber(records, directorySize, 8);
        appendNumber(records, directoryOffset, 8);
        appendNumber(records, ZIP64_LOCATOR, 4);
        appendNumber(records, 0, 4); // disk
        appendNumber(records, directoryOffset + directorySize, 8);
        appendNumber(records, 1, 4); // number of disks
    }
    appendNumber(records, DIRECTORY_END, 4);
    appendNumber(records, 0, 4); // disks
    appendNumber(records, atMost(itemCount, NO_ROOM_16), 2);
    appendNumber(records, atMost(itemCount, NO_ROOM_16), 2);
    appendNumber(records, atMost(directorySize, NO_ROOM_32), 4);
    appendNumber(records, atMost(directoryOffset, NO_ROOM_32), 4);
    appendNumber(records, comment.size(), 2);
    return records + comment;
}

} // namespace opc::physical::zip
