#include "archive/HiddenItems.hpp"

#include "zip/src/Records.hpp"

#include <algorithm>
#include <string_view>

namespace opc::inspection::archive {

using namespace physical::zip;
using namespace std::string_view_literals;

namespace {

constexpr std::string_view LOCAL_SIGNATURE = "PK\3\4"sv;
constexpr std::string_view DESCRIPTOR_SIGNATURE = "PK\7\x08"sv;
constexpr std::size_t DESCRIPTOR_SIZE = 16;

} // namespace

std::vector<Extent> HiddenItems::take(const Extent& unused) {
    std::vector<Extent> rest;
    std::uint64_t end = unused.start; // of what belongs to something
    for (std::uint64_t position = unused.start; contents.items.size() < most;) {
        const auto found = find(LOCAL_SIGNATURE, {position, unused.end});
        if (!found)
            break;
        auto local = readLocalHeader(bytes, *found);
        if (!local || local->end > unused.end) {
            position = *found + LOCAL_SIGNATURE.size();
            continue;
        }
        if (*found > end)
            rest.push_back({end, *found});
        ArchiveItem item = describe(*found, std::move(*local), unused.end);
        position = end = *item.endOffset;
        contents.items.push_back(std::move(item));
    }
    if (end < unused.end)
        rest.push_back({end, unused.end});
    return rest;
}

std::optional<std::uint64_t> HiddenItems::find(std::string_view signature, const Extent& where) {
    constexpr std::uint64_t LARGEST_BLOCK = std::uint64_t{256} << 10;
    std::uint64_t blockSize = std::uint64_t{4} << 10; // at first: the next item is mostly near
    for (std::uint64_t start = where.start; start + signature.size() <= where.end;
         blockSize = std::min(2 * blockSize, LARGEST_BLOCK)) {
        const std::size_t size = bytes.available(start, std::min(blockSize, where.end - start));
        const unsigned char* const block = bytes.look(start, size);
        if (!block || size < signature.size())
            break;
        const std::string_view text(reinterpret_cast<const char*>(block), size);
        if (const std::size_t found = text.find(signature); found != std::string_view::npos)
            return start + found;
        start += size - signature.size() + 1;
    }
    return std::nullopt;
}

ArchiveItem HiddenItems::describe(std::uint64_t offset, LocalHeader local, std::uint64_t limit) {
    ArchiveItem item;
    item.kind = ItemKind::Hidden;
    item.name = decodeName(local.header.name);
    item.reason = contents.hasDirectory ? "the directory doesn't list it"
                                        : "the archive has no directory that lists it";
    item.headerOffset = offset;
    item.dataOffset = item.endOffset = local.end;
    item.local = std::move(local.header);
    findEnd(item, limit);
    return item;
}

/// The end is where the header says or, if it doesn't say it yet, behind the next descriptor.
void HiddenItems::findEnd(ArchiveItem& item, std::uint64_t limit) {
    const ItemHeader& local = *item.local;
    const std::uint64_t start = *item.dataOffset;
    if ((local.flags & DATA_DESCRIPTOR) == 0 || local.compressedSize > 0) {
        item.endOffset = start + std::min(local.compressedSize, limit - start);
        return;
    }
    const std::uint64_t next = find(LOCAL_SIGNATURE, {start, limit}).value_or(limit);
    item.endOffset = next;
    const auto found = find(DESCRIPTOR_SIGNATURE, {start, next});
    const unsigned char* record =
        found && next - *found >= DESCRIPTOR_SIZE ? bytes.look(*found, DESCRIPTOR_SIZE) : nullptr;
    if (!record)
        return;
    item.hasDescriptor = true;
    item.descriptorChecksum = read32(record + 4);
    item.descriptorCompressedSize = read32(record + 8);
    item.descriptorSize = read32(record + 12);
    item.endOffset = *found + DESCRIPTOR_SIZE;
}

} // namespace opc::inspection::archive
