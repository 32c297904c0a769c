#include "ExtraFields.hpp"

#include "Records.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace opc::physical::zip {

namespace {

constexpr std::size_t FIELD_HEADER = 4; ///< kind and size

/// The known fields, and the most bytes that each can have.
constexpr struct {
    std::uint16_t kind;
    std::size_t mostBytes;
} KNOWN_FIELDS[] = {
    {ZIP64_FIELD, 28},           // two sizes, an offset, a disk
    {0x000A, 32},                // times of NTFS
    {0x5455, 13},                // times of Unix
    {0x5855, 12},                // times and owner of Unix
    {0x7855, 4},                 // owner
    {0x7875, 11},                // owner, with larger numbers
    {UNICODE_PATH_FIELD, 65535}, // compared with the names of all items
};

constexpr std::uint16_t GROWTH_HINT_FIELD = 0xA220;
constexpr std::uint16_t GROWTH_HINT_SIGNATURE = 0xA028;
constexpr std::size_t GROWTH_HINT_HEADER = 4; ///< its signature, and the room at first

bool areEqual(const unsigned char* bytes, std::size_t count) {
    // Each byte equals the next one. The C library compares many bytes at once.
    return count == 0 || std::memcmp(bytes, bytes + 1, count - 1) == 0;
}

bool areZeros(const unsigned char* bytes, std::size_t count) {
    return count == 0 || (bytes[0] == 0 && areEqual(bytes, count));
}

/// Kinds whose data isn't about the name, the kind or the content of an item.
constexpr std::uint16_t OTHER_DATA[] = {
    0x4453, // rights of NTFS
    0x6375, // a comment in UTF-8
};

bool isKnown(const ExtraField& field) {
    for (const auto& known : KNOWN_FIELDS) {
        if (known.kind == field.kind)
            return field.size <= known.mostBytes;
    }
    const bool isHint = field.kind == GROWTH_HINT_FIELD && field.size >= GROWTH_HINT_HEADER &&
                        read16(field.data) == GROWTH_HINT_SIGNATURE;
    return isHint ? areEqual(field.data + GROWTH_HINT_HEADER, field.size - GROWTH_HINT_HEADER)
                  : areZeros(field.data, field.size);
}

/// Whether there is a field that isn't accepted, or bytes that are no field.
template <typename Predicate>
bool holdsMore(const unsigned char* extra, std::size_t size, const Predicate& isAccepted) {
    ExtraFieldWalk walk(extra, size);
    for (ExtraField field; walk.next(field);) {
        if (!isAccepted(field))
            return true;
    }
    return !areZeros(extra + (size - walk.restSize()), walk.restSize());
}

} // namespace

bool ExtraFieldWalk::next(ExtraField& field) {
    if (left < FIELD_HEADER)
        return false;
    const std::size_t size = read16(rest + 2);
    if (left - FIELD_HEADER < size)
        return false;
    field = {read16(rest), rest + FIELD_HEADER, size};
    rest += FIELD_HEADER + size;
    left -= FIELD_HEADER + size;
    return true;
}

bool ExtraFieldWalk::isCutOff(std::uint16_t kind) const {
    return left >= FIELD_HEADER && read16(rest) == kind;
}

std::string_view unicodePath(const ExtraField& field) {
    constexpr std::size_t HEADER = 5; // version and checksum
    const std::string_view text(reinterpret_cast<const char*>(field.data), field.size);
    return text.substr(std::min(HEADER, text.size()));
}

bool holdsUnknownData(const unsigned char* extra, std::size_t size) {
    return holdsMore(extra, size, isKnown);
}

bool holdsOtherMeaning(const unsigned char* extra, std::size_t size) {
    return holdsMore(extra, size, [](const ExtraField& field) {
        return isKnown(field) ||
               std::find(std::begin(OTHER_DATA), std::end(OTHER_DATA), field.kind) != std::end(OTHER_DATA);
    });
}

Zip64Field::Zip64Field(const unsigned char* extra, std::size_t size) {
    ExtraFieldWalk walk(extra, size);
    while (walk.next(field)) {
        if (field.kind == ZIP64_FIELD)
            return;
    }
    field = {};
}

bool Zip64Field::resolve(std::uint64_t& value) {
    if (value != NO_ROOM_32)
        return true;
    if (field.size < 8)
        return false;
    value = read64(field.data);
    field.data += 8;
    field.size -= 8;
    return true;
}

bool hasOtherNumbers(const ExtraField& field, std::uint16_t flags, std::uint64_t size,
                     std::uint64_t compressedSize, std::uint64_t offset) {
    constexpr std::size_t WIDTH = 8; // of a number; behind them that of a disk may follow
    const bool areSizesBehind = (flags & DATA_DESCRIPTOR) != 0;
    const std::uint64_t numbers[] = {size, compressedSize, offset}; // each can be left out
    const auto* next = std::begin(numbers);
    for (std::size_t at = 0; at + WIDTH <= field.size; at += WIDTH) {
        const std::uint64_t number = read64(field.data + at);
        if (number == 0 && areSizesBehind)
            continue;
        next = std::find(next, std::end(numbers), number);
        if (next == std::end(numbers))
            return true;
        ++next;
    }
    return false;
}

std::string withoutZip64Field(std::string_view extra) {
    ExtraFieldWalk walk(reinterpret_cast<const unsigned char*>(extra.data()), extra.size());
    std::string others(extra);
    ExtraField field;
    for (std::size_t place = 0; walk.next(field); place = extra.size() - walk.restSize()) {
        if (field.kind == ZIP64_FIELD)
            return others.erase(place, FIELD_HEADER + field.size);
    }
    return others;
}

} // namespace opc::physical::zip
