#include "mending/ItemRecords.hpp"

#include "zip/src/ExtraFields.hpp"
#include "zip/src/Records.hpp"

#include <libdeflate.h>

#include <algorithm>
#include <memory>

namespace opc::editing::mending {

using namespace physical::zip;

namespace {

constexpr std::uint16_t ZIP64_VERSION = 45;
constexpr std::uint16_t USUAL_VERSION = 20;
constexpr int LEVEL = 6;
constexpr std::uint16_t DEFLATE_LEVELS = 6; ///< bits of the flags

bool isLarge(std::uint64_t number) {
    return number >= NO_ROOM_32;
}

std::uint64_t atMost(std::uint64_t number, std::uint64_t noRoom) {
    return std::min(number, noRoom);
}

std::string zip64Field(const std::string& numbers) {
    std::string field;
    if (!numbers.empty()) {
        appendNumber(field, ZIP64_FIELD, 2);
        appendNumber(field, numbers.size(), 2);
    }
    return field + numbers;
}

/// Without the field of sizes, which is written anew, and without bytes that are no field.
std::string otherFields(const std::string& fields) {
    std::string others;
    ExtraFieldWalk walk(reinterpret_cast<const unsigned char*>(fields.data()), fields.size());
    for (ExtraField field; walk.next(field);) {
        if (field.kind == ZIP64_FIELD)
            continue;
        appendNumber(others, field.kind, 2);
        appendNumber(others, field.size, 2);
        others.append(reinterpret_cast<const char*>(field.data), field.size);
    }
    return others;
}

} // namespace

void ItemRecord::simplify() {
    const bool needsRoom = isLarge(size) || isLarge(compressedSize);
    versionNeeded = needsRoom ? ZIP64_VERSION : USUAL_VERSION;
    flags &= ENCRYPTION_FLAGS | DEFLATE_LEVELS | NAME_IS_UTF8;
}

std::string ItemRecord::localHeader() const {
    std::string numbers;
    const bool needsRoom = isLarge(size) || isLarge(compressedSize);
    if (needsRoom) {
        appendNumber(numbers, size, 8);
        appendNumber(numbers, compressedSize, 8);
    }
    const std::string extra = zip64Field(numbers) + extraFields;
    std::string header;
    appendNumber(header, LOCAL_HEADER, 4);
    appendNumber(header, versionNeeded, 2);
    appendNumber(header, flags, 2);
    appendNumber(header, method, 2);
    appendNumber(header, time, 2);
    appendNumber(header, date, 2);
    appendNumber(header, checksum, 4);
    appendNumber(header, needsRoom ? NO_ROOM_32 : compressedSize, 4);
    appendNumber(header, needsRoom ? NO_ROOM_32 : size, 4);
    appendNumber(header, name.size(), 2);
    appendNumber(header, extra.size(), 2);
    return header + name + extra;
}

void ItemRecord::append(std::string& directory, std::uint64_t offset) const {
    std::string numbers;
    for (const std::uint64_t number : {size, compressedSize, offset})
        if (isLarge(number))
            appendNumber(numbers, number, 8);
    const std::string extra = zip64Field(numbers) + extraFields;
    appendNumber(directory, DIRECTORY_ENTRY, 4);
    appendNumber(directory, versionMadeBy, 2);
    appendNumber(directory, versionNeeded, 2);
    appendNumber(directory, flags, 2);
    appendNumber(directory, method, 2);
    appendNumber(directory, time, 2);
    appendNumber(directory, date, 2);
    appendNumber(directory, checksum, 4);
    appendNumber(directory, atMost(compressedSize, NO_ROOM_32), 4);
    appendNumber(directory, atMost(size, NO_ROOM_32), 4);
    appendNumber(directory, name.size(), 2);
    appendNumber(directory, extra.size(), 2);
    appendNumber(directory, comment.size(), 2);
    appendNumber(directory, 0, 4); // disk, internal attributes
    appendNumber(directory, externalAttributes, 4);
    appendNumber(directory, atMost(offset, NO_ROOM_32), 4);
    directory.append(name).append(extra).append(comment);
}

ItemRecord recordOf(const inspection::ArchiveItem& item) {
    const inspection::ItemHeader& header = item.central ? *item.central : *item.local;
    ItemRecord record;
    record.name = header.name;
    record.versionNeeded = header.versionNeeded;
    record.flags = header.flags;
    record.method = header.method;
    record.time = header.time;
    record.date = header.date;
    record.checksum = header.checksum;
    record.compressedSize = header.compressedSize;
    record.size = header.size;
    record.extraFields = otherFields(header.extraFields);
    if (!item.central) {
        record.compressedSize = *item.endOffset - *item.dataOffset;
        if (item.hasDescriptor) {
            record.checksum = item.descriptorChecksum;
            record.compressedSize = item.descriptorCompressedSize;
            record.size = item.descriptorSize;
        }
        return record;
    }
    record.versionMadeBy = item.versionMadeBy;
    record.comment = item.comment;
    record.externalAttributes = item.externalAttributes;
    return record;
}

std::string setContent(ItemRecord& record, const std::string& content) {
    record.size = content.size();
    record.checksum = ::libdeflate_crc32(0, content.data(), content.size());
    const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
        ::libdeflate_alloc_compressor(LEVEL), ::libdeflate_free_compressor);
    std::string compressed(content.size(), '\0');
    const std::size_t size =
        compressor ? ::libdeflate_deflate_compress(compressor.get(), content.data(), content.size(),
                                                   compressed.data(), compressed.size())
                   : 0;
    compressed.resize(size);
    record.method = size > 0 ? DEFLATE : STORE; // 0: it would be no shorter
    if (size == 0)
        compressed = content;
    record.compressedSize = compressed.size();
    record.simplify();
    record.flags &= NAME_IS_UTF8;
    return compressed;
}

} // namespace opc::editing::mending
