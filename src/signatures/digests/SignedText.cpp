#include "signatures/digests/SignedText.hpp"

#include <algorithm>
#include <utility>

namespace opc::model {

namespace {

constexpr unsigned char lowByte(char16_t unit) {
    return static_cast<unsigned char>(unit & 0xFF);
}
constexpr unsigned char highByte(char16_t unit) {
    return static_cast<unsigned char>(unit >> 8);
}

void writeUnits(const char16_t* units, std::size_t count, unsigned char* bytes) {
    for (std::size_t i = 0; i < count; ++i) {
        bytes[2 * i] = lowByte(units[i]);
        bytes[2 * i + 1] = highByte(units[i]);
    }
}

} // namespace

void SignedText::open() {
}

std::uint64_t SignedText::read(unsigned char* buffer, std::uint64_t count) {
    if (piece.empty())
        piece = std::exchange(next, {});
    if (piece.empty() || count == 0)
        return 0;
    if (isInsideUnit || count == 1) {
        *buffer = isInsideUnit ? highByte(piece.front()) : lowByte(piece.front());
        piece.remove_prefix(isInsideUnit ? 1 : 0);
        isInsideUnit = !isInsideUnit;
        return 1;
    }
    const auto units = static_cast<std::size_t>(std::min<std::uint64_t>(count / 2, piece.size()));
    writeUnits(piece.data(), units, buffer);
    piece.remove_prefix(units);
    return 2 * units;
}

bool SignedText::isDone() const {
    return piece.empty() && next.empty();
}

void SignedText::close() {
}

std::vector<unsigned char> toSignedBytes(std::u16string_view text) {
    std::vector<unsigned char> bytes(text.size() * 2);
    SignedText(text).read(bytes.data(), bytes.size());
    return bytes;
}

} // namespace opc::model
