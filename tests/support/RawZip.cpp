#include "support/RawZip.hpp"

#include <boost/crc.hpp>

#include <stdexcept>

namespace opc::test {

namespace {

void append(std::string& out, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i)
        out += static_cast<char>(value >> (8 * i));
}

std::uint32_t packedSize(const RawItem& item) {
    return item.packedSize.value_or(static_cast<std::uint32_t>(item.data.size()));
}

/// The fields that a local header and a directory entry have in common.
void appendCommon(std::string& out, const RawItem& item, std::size_t extraSize) {
    constexpr std::uint32_t NO_ROOM = 0xFFFFFFFF;
    append(out, item.flags, 2);
    append(out, item.method, 2);
    append(out, item.time, 4);
    append(out, item.crc, 4);
    append(out, item.zip64 ? NO_ROOM : packedSize(item), 4);
    append(out, item.zip64 ? NO_ROOM : item.size, 4);
    append(out, item.name.size(), 2);
    append(out, extraSize, 2);
}

void appendDescriptor(std::string& out, const RawItem& item) {
    if (item.descriptorIsSigned)
        append(out, 0x08074b50, 4);
    append(out, item.crc, 4);
    append(out, packedSize(item), item.descriptorWidth);
    append(out, item.size, item.descriptorWidth);
}

std::string zip64Field(const std::vector<std::uint64_t>& numbers) {
    std::string field;
    append(field, 1, 2);
    append(field, 8 * numbers.size(), 2);
    for (const std::uint64_t number : numbers)
        append(field, number, 8);
    return field;
}

void appendEntry(std::string& directory, const RawItem& item, std::size_t place) {
    const std::size_t offset = item.offset.value_or(static_cast<std::uint32_t>(place));
    std::string extra = item.extra;
    if (item.zip64)
        extra += zip64Field({item.size, packedSize(item), offset});
    append(directory, 0x02014b50, 4);
    append(directory, item.versionMadeBy, 2);
    append(directory, item.versionNeeded, 2);
    appendCommon(directory, item, extra.size());
    append(directory, item.comment.size(), 2);
    append(directory, item.disk, 2);
    append(directory, 0, 2); // internal attributes
    append(directory, item.attributes, 4);
    append(directory, item.zip64 ? 0xFFFFFFFF : offset, 4);
    directory += item.name + extra + item.comment;
}

/// Local header, data and descriptor.
void appendContent(std::string& archive, const RawItem& item) {
    RawItem local = item;
    if (item.changeLocal)
        item.changeLocal(local);
    RawItem header = local;
    if (header.streamed)
        header.packedSize = header.crc = header.size = 0;
    if (header.zip64)
        header.localExtra += zip64Field({header.size, packedSize(header)});
    append(archive, 0x04034b50, 4);
    append(archive, header.versionNeeded, 2);
    appendCommon(archive, header, header.localExtra.size());
    archive += header.name + header.localExtra + item.data;
    if (local.streamed)
        appendDescriptor(archive, local);
}

void appendZip64Records(std::string& out, std::uint64_t count, std::uint64_t size, std::uint64_t offset) {
    append(out, 0x06064b50, 4);
    append(out, 44, 8);
    append(out, 45, 2);
    append(out, 45, 2);
    append(out, 0, 8);
    for (const std::uint64_t number : {count, count, size, offset})
        append(out, number, 8);
    append(out, 0x07064b50, 4);
    append(out, 0, 4);
    append(out, offset + size, 8);
    append(out, 1, 4);
}

std::uint32_t number(const Bytes& bytes, std::size_t offset, int width) {
    std::uint32_t value = 0;
    for (int i = width - 1; i >= 0; --i)
        value = value << 8 | bytes.at(offset + static_cast<std::size_t>(i));
    return value;
}

std::string text(const Bytes& bytes, std::size_t offset, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += static_cast<char>(bytes.at(offset + i));
    return result;
}

RawItem readItem(const Bytes& archive, std::size_t entry) {
    RawItem item;
    item.flags = static_cast<std::uint16_t>(number(archive, entry + 8, 2));
    item.method = static_cast<std::uint16_t>(number(archive, entry + 10, 2));
    item.time = number(archive, entry + 12, 4);
    item.crc = number(archive, entry + 16, 4);
    item.size = number(archive, entry + 24, 4);
    item.attributes = number(archive, entry + 38, 4);
    const std::uint32_t nameSize = number(archive, entry + 28, 2);
    item.name = text(archive, entry + 46, nameSize);
    item.extra = text(archive, entry + 46 + nameSize, number(archive, entry + 30, 2));
    const std::size_t local = number(archive, entry + 42, 4);
    const std::size_t data = local + 30 + number(archive, local + 26, 2) + number(archive, local + 28, 2);
    if (number(archive, entry + 20, 4) != 0xFFFFFFFF)
        item.data = text(archive, data, number(archive, entry + 20, 4));
    return item;
}

} // namespace

RawItem stored(const std::string& name, const std::string& content) {
    RawItem item;
    item.name = name;
    item.data = content;
    item.size = static_cast<std::uint32_t>(content.size());
    boost::crc_32_type crc;
    crc.process_bytes(content.data(), content.size());
    item.crc = crc.checksum();
    return item;
}

RawItem oddlyDeflated(const std::string& name, const std::string& content) {
    RawItem item = stored(name, content);
    item.method = 8;
    item.data.clear();
    item.data += '\1'; // the last block, not compressed
    append(item.data, content.size(), 2);
    append(item.data, ~content.size(), 2);
    item.data += content;
    return item;
}

Bytes makeArchive(const RawArchive& raw) {
    std::string archive = raw.inFront;
    std::string directory;
    std::size_t count = 0;
    for (const RawItem& item : raw.items) {
        archive += item.inFront;
        if (item.listed) {
            appendEntry(directory, item, archive.size());
            ++count;
        }
        if (item.present)
            appendContent(archive, item);
    }
    archive += raw.beforeDirectory;
    const std::size_t start = archive.size();
    archive += directory + raw.behindDirectory;
    if (raw.zip64)
        appendZip64Records(archive, count, directory.size(), start);
    append(archive, 0x06054b50, 4);
    append(archive, raw.disk, 2);
    append(archive, raw.disk, 2);
    append(archive, raw.count.value_or(raw.zip64 ? 0xFFFF : count), 2);
    append(archive, raw.count.value_or(raw.zip64 ? 0xFFFF : count), 2);
    append(archive, raw.zip64 ? 0xFFFFFFFF : directory.size(), 4);
    append(archive, raw.directoryStart.value_or(raw.zip64 ? 0xFFFFFFFF : start), 4);
    append(archive, raw.comment.size(), 2);
    archive += raw.comment + raw.behind;
    return {archive.begin(), archive.end()};
}

Bytes makeZip(const std::vector<RawItem>& items, const std::string& comment, bool zip64) {
    RawArchive archive;
    archive.items = items;
    archive.comment = comment;
    archive.zip64 = zip64;
    return makeArchive(archive);
}

std::vector<RawItem> readZip(const Bytes& archive) {
    std::size_t end = archive.size() - 22;
    while (number(archive, end, 4) != 0x06054b50)
        --end;
    std::vector<RawItem> items;
    std::size_t entry = number(archive, end + 16, 4);
    for (std::uint32_t count = number(archive, end + 10, 2); count > 0; --count) {
        items.push_back(readItem(archive, entry));
        entry += 46 + number(archive, entry + 28, 2) + number(archive, entry + 30, 2) +
                 number(archive, entry + 32, 2);
    }
    return items;
}

const RawItem& itemOf(const std::vector<RawItem>& items, const std::string& name) {
    for (const RawItem& item : items) {
        if (item.name == name)
            return item;
    }
    throw std::out_of_range(name);
}

} // namespace opc::test
