#pragma once

#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opc::physical::zip {

constexpr std::size_t RECORD_SIGNATURE = 4; // bytes

/// Whether bytes have the signature of a local header, a data descriptor, or a record of the directory or its end.
inline bool holdsRecordSignature(const unsigned char* bytes, const unsigned char* end) {
    constexpr std::array SIGNATURES{LOCAL_HEADER,  DESCRIPTOR,          DIRECTORY_ENTRY,
                                    DIRECTORY_END, ZIP64_DIRECTORY_END, ZIP64_LOCATOR};
    for (; end - bytes >= std::ptrdiff_t{RECORD_SIGNATURE}; ++bytes) {
        const auto room = static_cast<std::size_t>(end - bytes) - (RECORD_SIGNATURE - 1);
        bytes = static_cast<const unsigned char*>(std::memchr(bytes, 'P', room));
        if (!bytes)
            return false;
        if (bytes[1] == 'K' &&
            std::find(SIGNATURES.begin(), SIGNATURES.end(), read32(bytes)) != SIGNATURES.end())
            return true;
    }
    return false;
}

/// Whether a record has such a signature behind its own, in whatever fields. It can't reach into a record that follows, because
/// that begins with other bytes.
/// @param end  of the record, or of what follows and is no record
inline bool hidesRecord(const unsigned char* record, const unsigned char* end) {
    return holdsRecordSignature(record + 1, end);
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
