#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace opc::physical::zip {

constexpr std::size_t RECORD_SIGNATURE = 4; // bytes

/// Whether bytes have the signature of a local header, a data descriptor, or a record of the directory or its end.
inline bool holdsRecordSignature(const unsigned char* bytes, const unsigned char* end) {
    constexpr std::array<std::array<unsigned char, 2>, 6> AFTER_PK{
        {{1, 2}, {3, 4}, {5, 6}, {6, 6}, {6, 7}, {7, 8}}};
    for (; end - bytes >= std::ptrdiff_t{RECORD_SIGNATURE}; ++bytes) {
        bytes = std::find(bytes, end - RECORD_SIGNATURE, 'P'); // or the last place
        const std::array<unsigned char, 2> kind{bytes[2], bytes[3]};
        if (bytes[0] == 'P' && bytes[1] == 'K' &&
            std::find(AFTER_PK.begin(), AFTER_PK.end(), kind) != AFTER_PK.end())
            return true;
    }
    return false;
}

/// The same for the content of a stored item. Programs that don't use the directory may take it for the end of an item whose
/// header doesn't say how long it is, and what follows for further items.
/// @param read  gives `count` bytes at an offset of the content
template <typename Read>
bool holdsRecordSignature(std::uint64_t size, const Read& read) {
    constexpr std::uint64_t BLOCK = 65536;
    constexpr std::uint64_t STEP = BLOCK - RECORD_SIGNATURE + 1; // blocks overlap
    for (std::uint64_t done = 0; done < size; done += STEP) {
        const auto count = static_cast<std::size_t>(std::min(size - done, BLOCK));
        const unsigned char* const bytes = read(done, count);
        if (holdsRecordSignature(bytes, bytes + count))
            return true;
    }
    return false;
}

} // namespace opc::physical::zip
