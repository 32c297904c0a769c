#pragma once

#include <array>
#include <cstdint>
#include <string>

/// @file
/// The records of a ZIP archive. All numbers in them are little-endian.

namespace opc::physical::zip {

/// The signatures at the beginning of records.
constexpr std::uint32_t LOCAL_HEADER = 0x04034B50;
constexpr std::uint32_t DESCRIPTOR = 0x08074B50;
constexpr std::uint32_t DIRECTORY_ENTRY = 0x02014B50;
constexpr std::uint32_t DIRECTORY_END = 0x06054B50;
constexpr std::uint32_t ZIP64_DIRECTORY_END = 0x06064B50;
constexpr std::uint32_t ZIP64_LOCATOR = 0x07064B50;

/// The fixed sizes, without names, extra fields and comments.
constexpr std::size_t LOCAL_HEADER_SIZE = 30;
constexpr std::size_t DIRECTORY_ENTRY_SIZE = 46;
constexpr std::size_t DIRECTORY_END_SIZE = 22;
constexpr std::size_t ZIP64_DIRECTORY_END_SIZE = 56;
constexpr std::size_t ZIP64_LOCATOR_SIZE = 20;

/// Takes the place of a number that doesn't fit. The number is in a ZIP64 record or field instead.
constexpr std::uint16_t NO_ROOM_16 = 0xFFFF;
constexpr std::uint32_t NO_ROOM_32 = 0xFFFFFFFF;
constexpr std::uint16_t ZIP64_FIELD = 1;

/// Bits of an item's flags.
constexpr std::uint16_t ENCRYPTED = 1U << 0;
constexpr std::uint16_t DATA_DESCRIPTOR = 1U << 3; ///< the local header was written before the content
constexpr std::uint16_t STRONGLY_ENCRYPTED = 1U << 6;
constexpr std::uint16_t NAME_IS_UTF8 = 1U << 11;
constexpr std::uint16_t ENCRYPTED_HEADER = 1U << 13; ///< numbers in the local header are hidden

constexpr std::uint16_t ENCRYPTION_FLAGS = ENCRYPTED | STRONGLY_ENCRYPTED | ENCRYPTED_HEADER;

/// Compression methods.
constexpr std::uint16_t STORE = 0;
constexpr std::uint16_t DEFLATE = 8;

/// The number in the `width` bytes at `bytes`.
inline std::uint64_t readNumber(const unsigned char* bytes, unsigned width) {
    std::uint64_t value = 0;
    for (unsigned i = width; i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}
inline std::uint16_t read16(const unsigned char* bytes) {
    return static_cast<std::uint16_t>(readNumber(bytes, 2));
}
inline std::uint32_t read32(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(readNumber(bytes, 4));
}
inline std::uint64_t read64(const unsigned char* bytes) {
    return readNumber(bytes, 8);
}

/// The whole sizes of records, including the variable parts.
inline std::size_t localHeaderSizeOf(const unsigned char* header) {
    return LOCAL_HEADER_SIZE + read16(header + 26) + read16(header + 28);
}
inline std::size_t directoryEntrySizeOf(const unsigned char* entry) {
    return DIRECTORY_ENTRY_SIZE + read16(entry + 28) + read16(entry + 30) + read16(entry + 32);
}

/// Appends `value` in `width` bytes to a record that is being written.
inline void appendNumber(std::string& record, std::uint64_t value, unsigned width) {
    std::array<char, 8> bytes{};
    for (unsigned i = 0; i < width; ++i)
        bytes[i] = static_cast<char>(value >> (8 * i) & 0xFF);
    record.append(bytes.data(), width);
}

} // namespace opc::physical::zip
