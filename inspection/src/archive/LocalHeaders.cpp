#include "archive/LocalHeaders.hpp"

#include "archive/HeaderFields.hpp"
#include "zip/src/ExtraFields.hpp"
#include "zip/src/LocalHeader.hpp"
#include "zip/src/NameText.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>

namespace opc::inspection::archive {

using namespace physical::zip;

namespace {

bool isWrittenEarly(const ItemHeader& local) {
    return (local.flags & DATA_DESCRIPTOR) != 0;
}

/// What in a local header differs from the directory, as words for a message; empty if nothing does.
std::string differenceOf(const ItemHeader& local, const ItemHeader& central) {
    std::string words;
    const auto add = [&words](bool differs, const std::string& what) {
        if (differs)
            words += (words.empty() ? "" : ", ") + what;
    };
    const auto number = [&](const char* what, std::uint64_t here, std::uint64_t there) {
        add(here != there && !(here == 0 && isWrittenEarly(local)),
            what + (' ' + std::to_string(here) + " instead of " + std::to_string(there)));
    };
    add(local.name != central.name, "name \"" + decodeName(local.name) + '"');
    number("method", local.method, central.method);
    add(local.flags != central.flags, "flags");
    number("checksum", local.checksum, central.checksum);
    number("compressed size", local.compressedSize, central.compressedSize);
    number("size", local.size, central.size);
    return words;
}

class LocalReader {
public:
    LocalReader(RecordBytes& bytes, ArchiveContents& contents) : bytes(bytes), contents(contents) {}

    void read(ArchiveItem& item);

private:
    void readDescriptor(ArchiveItem& item);
    void readForeignDescriptor(ArchiveItem& item, const unsigned char* behind, std::size_t count);
    void fail(ArchiveItem& item, std::string_view rule, std::string why, std::string message) {
        contents.addFault(rule, indexOf(item), item.headerOffset, std::move(message));
        if (item.unreadable.empty())
            item.unreadable = std::move(why);
    }

    std::size_t indexOf(const ArchiveItem& item) const {
        return static_cast<std::size_t>(&item - contents.items.data());
    }

    RecordBytes& bytes;
    ArchiveContents& contents;
};

void LocalReader::read(ArchiveItem& item) {
    auto local = readLocalHeader(bytes, *item.headerOffset);
    if (!local)
        return fail(item, "M3.14", "no local header where the directory says",
                    "The item has no local header where the directory says");
    item.local = std::move(local->header);
    item.dataOffset = local->end;
    if (const std::string difference = differenceOf(*item.local, *item.central); !difference.empty())
        contents.addFault("M3.14", indexOf(item), item.headerOffset,
                          "The local header of the item differs from the directory: " + difference);
    if (bytes.available(*item.dataOffset, item.central->compressedSize) < item.central->compressedSize)
        return fail(item, "M3.16", "reaches beyond the end of the archive",
                    "The item reaches beyond the end of the archive");
    item.endOffset = *item.dataOffset + item.central->compressedSize;
    if (isWrittenEarly(*item.local))
        readDescriptor(item);
}

void LocalReader::readDescriptor(ArchiveItem& item) {
    const ItemHeader& central = *item.central;
    const std::size_t count = bytes.available(*item.endOffset, LONGEST_DESCRIPTOR);
    const unsigned char* const behind = bytes.look(*item.endOffset, count);
    DirectoryEntry entry;
    entry.crc = central.checksum;
    entry.compressedSize = central.compressedSize;
    entry.size = central.size;
    if (const auto size = behind ? matchDescriptor(entry, behind, count) : std::nullopt) {
        item.hasDescriptor = true;
        item.descriptorChecksum = central.checksum;
        item.descriptorCompressedSize = central.compressedSize;
        item.descriptorSize = central.size;
        *item.endOffset += *size;
    } else {
        readForeignDescriptor(item, behind, count);
    }
}

/// Reads a descriptor that says something else than the directory: it is one by its signature alone.
void LocalReader::readForeignDescriptor(ArchiveItem& item, const unsigned char* behind, std::size_t count) {
    constexpr std::size_t USUAL = 16;
    if (behind && count >= USUAL && read32(behind) == DESCRIPTOR) {
        item.hasDescriptor = true;
        item.descriptorChecksum = read32(behind + 4);
        item.descriptorCompressedSize = read32(behind + 8);
        item.descriptorSize = read32(behind + 12);
        contents.addFault("M3.14", indexOf(item), item.endOffset,
                          "The data descriptor of the item differs from the directory");
        *item.endOffset += USUAL;
        return;
    }
    contents.addFault("M3.14", indexOf(item), item.endOffset,
                      "The item has no data descriptor, which its local header announces");
}

} // namespace

std::optional<LocalHeader> readLocalHeader(RecordBytes& bytes, std::uint64_t offset) {
    const unsigned char* record = bytes.look(offset, LOCAL_HEADER_SIZE);
    if (!record || read32(record) != LOCAL_HEADER)
        return std::nullopt;
    const std::size_t size = localHeaderSizeOf(record);
    record = bytes.look(offset, size);
    if (!record || localHeaderSizeOf(record) != size)
        return std::nullopt;
    LocalHeader result;
    ItemHeader& header = result.header;
    readFields(record + 4, header);
    header.compressedSize = read32(record + 18);
    header.size = read32(record + 22);
    const char* const text = reinterpret_cast<const char*>(record) + LOCAL_HEADER_SIZE;
    header.name.assign(text, read16(record + 26));
    header.extraFields.assign(text + header.name.size(), read16(record + 28));
    Zip64Field field(reinterpret_cast<const unsigned char*>(header.extraFields.data()),
                     header.extraFields.size());
    for (std::uint64_t* number : {&header.size, &header.compressedSize})
        if (!field.resolve(*number) && isWrittenEarly(header))
            *number = 0; // it isn't known yet
    result.end = offset + size;
    return result;
}

void readLocalHeaders(RecordBytes& bytes, ArchiveContents& contents, std::vector<std::size_t>& order) {
    std::vector<ArchiveItem>& items = contents.items;
    order.resize(items.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&items](std::size_t left, std::size_t right) {
        return items[left].headerOffset < items[right].headerOffset;
    });
    LocalReader reader(bytes, contents);
    for (const std::size_t index : order)
        reader.read(items[index]);
    order.erase(std::remove_if(order.begin(), order.end(),
                               [&items](std::size_t index) { return !items[index].endOffset; }),
                order.end());
}

} // namespace opc::inspection::archive
