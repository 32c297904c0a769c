#include "checks/security/BinaryRecords.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::inspection {

void BinaryRecords::begin() {
    at = At::Kind;
    taken = kind = size = 0;
}

void BinaryRecords::add(std::string_view piece) {
    while (!piece.empty()) {
        if (at == At::Content) {
            piece.remove_prefix(takeContent(piece));
        } else {
            takeHeader(static_cast<unsigned char>(piece.front()));
            piece.remove_prefix(1);
        }
    }
}

void BinaryRecords::takeHeader(unsigned char byte) {
    const std::uint32_t bits = (byte & 0x7FU) << 7U * taken++;
    (at == At::Kind ? kind : size) |= bits;
    if ((byte & 0x80U) != 0 && taken < (at == At::Kind ? 2U : 4U))
        return;
    taken = 0;
    if (at == At::Kind) {
        at = At::Size;
        return;
    }
    at = At::Content;
    isWanted = std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
    content.clear();
    if (size == 0)
        takeContent({});
}

std::size_t BinaryRecords::takeContent(std::string_view piece) {
    const std::size_t count = std::min<std::size_t>(size, piece.size());
    if (isWanted)
        content.append(piece.substr(0, std::min(count, MOST_CONTENT - content.size())));
    size -= static_cast<std::uint32_t>(count);
    if (size == 0) {
        if (isWanted)
            reader(kind, content);
        begin();
    }
    return count;
}

std::string_view RecordFields::take(std::size_t count) {
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(taken.size());
    return taken;
}

std::uint32_t RecordFields::number(std::size_t bytes) {
    std::uint32_t value = 0;
    unsigned shift = 0;
    for (const char byte : take(bytes)) {
        value |= std::uint32_t{static_cast<unsigned char>(byte)} << shift;
        shift += 8;
    }
    return value;
}

std::string_view RecordFields::bytes() {
    return take(number(4));
}

std::string RecordFields::text() {
    constexpr std::uint32_t NONE = 0xFFFFFFFF;
    const std::uint32_t length = number(4);
    std::u16string units;
    if (length == NONE)
        return {};
    const std::string_view stored = take(std::size_t{length} * 2);
    for (std::size_t i = 0; i + 1 < stored.size(); i += 2)
        units += static_cast<char16_t>(static_cast<unsigned char>(stored[i]) |
                                       static_cast<unsigned char>(stored[i + 1]) << 8U);
    return toUDEString(units);
}

} // namespace opc::inspection
