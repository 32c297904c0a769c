#include <opc/physical/ReadingMemory.hpp>

namespace opc::physical {

namespace {

constexpr std::size_t ITEM_COUNT = 256;

} // namespace

ReadingMemory::ReadingMemory() : items(ITEM_COUNT) {
}

ReadingMemory::~ReadingMemory() = default;

const std::string* ReadingMemory::find(std::uint32_t checksum, std::string_view compressed) const {
    const Item& item = items[placeOf(checksum)];
    return item.checksum == checksum && item.compressed == compressed ? &item.content : nullptr;
}

void ReadingMemory::keep(std::uint32_t checksum, std::string_view compressed, std::string_view content) {
    if (compressed.size() > MOST_COMPRESSED || content.size() > MOST_EXPANDED)
        return;
    Item& item = items[placeOf(checksum)];
    item.compressed.clear(); // if there is no memory for the content, nothing is found
    item.content = content;
    item.checksum = checksum;
    item.compressed = compressed;
}

/// A checksum is random enough. Whoever chooses it makes contents replace each other, and no more.
std::size_t ReadingMemory::placeOf(std::uint32_t checksum) {
    return checksum % ITEM_COUNT;
}

} // namespace opc::physical
