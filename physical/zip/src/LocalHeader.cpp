#include "LocalHeader.hpp"

#include "ExtraFields.hpp"
#include "Failure.hpp"
#include "NameText.hpp"
#include "Records.hpp"

#include <cerrno>
#include <cstring>

namespace opc::physical::zip {

namespace {

bool isWrittenEarly(const unsigned char* header) {
    return (read16(header + 6) & DATA_DESCRIPTOR) != 0;
}

Zip64Field zip64FieldOf(const unsigned char* header) {
    return {header + LOCAL_HEADER_SIZE + read16(header + 26), read16(header + 28)};
}

/// Whether the numbers in a local header are those of the directory.
/// @param early  whether the numbers may still be missing
bool hasNumbersOf(const DirectoryEntry& entry, const unsigned char* header, bool early) {
    std::uint64_t compressedSize = read32(header + 18);
    std::uint64_t size = read32(header + 22);
    Zip64Field field = zip64FieldOf(header);
    if (!field.resolve(size) || !field.resolve(compressedSize))
        return early;
    const auto agrees = [early](std::uint64_t local, std::uint64_t directory) {
        return local == directory || (early && local == 0);
    };
    return agrees(read32(header + 14), entry.crc) && agrees(size, entry.size) &&
           agrees(compressedSize, entry.compressedSize);
}

/// Whether the flags mean the same. The flag for the encoding of names counts only if the name isn't ASCII.
bool agreeOnFlags(const DirectoryEntry& entry, const unsigned char* header) {
    const unsigned differing = read16(header + 6) ^ entry.flags;
    return (differing & ENCRYPTION_FLAGS) == 0 &&
           ((differing & NAME_IS_UTF8) == 0 || isASCII(entry.storedName()));
}

bool isDescriptor(const DirectoryEntry& entry, const unsigned char* numbers, unsigned width) {
    return read32(numbers) == entry.crc && readNumber(numbers + 4, width) == entry.compressedSize &&
           readNumber(numbers + 4 + width, width) == entry.size;
}

bool isSigned(const unsigned char* descriptor, std::size_t count) {
    return count >= 4 && read32(descriptor) == DESCRIPTOR;
}

} // namespace

void checkLocalHeader(const DirectoryEntry& entry, const unsigned char* header, const std::string& archive) {
    const unsigned char* name = header + LOCAL_HEADER_SIZE;
    const std::size_t nameSize = read16(header + 26);
    const std::string_view expected = entry.storedName();
    if (nameSize != expected.size() || std::memcmp(name, expected.data(), nameSize) != 0)
        failItem(entry, archive, "its local header has another name");
    if (read16(header + 8) != entry.method || !agreeOnFlags(entry, header) ||
        !hasNumbersOf(entry, header, isWrittenEarly(header)))
        failItem(entry, archive, "its local header differs from the directory");
}

bool hasZip64Field(const unsigned char* header) {
    ExtraFieldWalk walk(header + LOCAL_HEADER_SIZE + read16(header + 26), read16(header + 28));
    for (ExtraField field; walk.next(field);)
        if (field.kind == ZIP64_FIELD)
            return true;
    return walk.isCutOff(ZIP64_FIELD);
}

std::optional<std::size_t> matchDescriptor(const DirectoryEntry& entry, const unsigned char* behind,
                                           std::size_t count) {
    for (const unsigned width : {8U, 4U}) {
        for (const std::size_t start : {std::size_t{4}, std::size_t{0}}) {
            const std::size_t size = start + 4 + 2 * std::size_t{width};
            if (size <= count && (start == 0 || isSigned(behind, count)) &&
                isDescriptor(entry, behind + start, width))
                return size;
        }
    }
    return std::nullopt;
}

std::size_t descriptorSize(const DirectoryEntry& entry, const unsigned char* header,
                           const unsigned char* behind, std::size_t count, const std::string& archive) {
    if (!isWrittenEarly(header))
        return 0;
    if (const auto size = matchDescriptor(entry, behind, count))
        return *size;
    if (isSigned(behind, count) || !hasNumbersOf(entry, header, false))
        failItem(entry, archive, "its data descriptor differs from the directory");
    return 0;
}

void failItem(const DirectoryEntry& entry, const std::string& archive, const std::string& what) {
    fail(itemPlace(archive, entry.name), "can't read: " + what, EBADMSG);
}

} // namespace opc::physical::zip
