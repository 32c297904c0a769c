#pragma once

#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace opc::physical::zip {

constexpr std::size_t RECORD_SIGNATURE = 4; // bytes

/// The first signature of a local header, a data descriptor, or a record of the directory or its end; null if there is none.
inline const unsigned char* findRecordSignature(const unsigned char* bytes, const unsigned char* end) {
    constexpr std::array SIGNATURES{LOCAL_HEADER,  DESCRIPTOR,          DIRECTORY_ENTRY,
                                    DIRECTORY_END, ZIP64_DIRECTORY_END, ZIP64_LOCATOR};
    for (; end - bytes >= std::ptrdiff_t{RECORD_SIGNATURE}; ++bytes) {
        const auto room = static_cast<std::size_t>(end - bytes) - (RECORD_SIGNATURE - 1);
        bytes = static_cast<const unsigned char*>(std::memchr(bytes, 'P', room));
        if (!bytes)
            return nullptr;
        if (bytes[1] == 'K' &&
            std::find(SIGNATURES.begin(), SIGNATURES.end(), read32(bytes)) != SIGNATURES.end())
            return bytes;
    }
    return nullptr;
}

/// Whether a record has such a signature behind its own, in whatever fields. It can't reach into a record that follows, because
/// that begins with other bytes.
/// @param end  of the record, or of what follows and is no record
inline bool hidesRecord(const unsigned char* record, const unsigned char* end) {
    return findRecordSignature(record + 1, end) != nullptr;
}

/// The same for a content.
/// @param read        gives `count` bytes at an offset of the content
/// @param isOneOfThem  gets each signature, in their order, until it says that it is what is looked for
template <typename Read, typename IsOneOfThem>
bool anyRecordSignature(std::uint64_t size, const Read& read, IsOneOfThem isOneOfThem) {
    constexpr std::uint64_t BLOCK = 65536;
    constexpr std::uint64_t STEP = BLOCK - RECORD_SIGNATURE + 1; // blocks overlap
    for (std::uint64_t done = 0; done < size; done += STEP) {
        const auto count = static_cast<std::size_t>(std::min(size - done, BLOCK));
        const unsigned char* bytes = read(done, count);
        const unsigned char* const end = bytes + count;
        for (; (bytes = findRecordSignature(bytes, end)) != nullptr; ++bytes)
            if (isOneOfThem(read32(bytes)))
                return true;
    }
    return false;
}

/// For a stored item, and any whose length stands in a ZIP64 field. Programs that don't use the directory may take any signature for
/// the end of an item whose header doesn't tell them how long it is, and what follows for further items.
template <typename Read>
bool holdsRecordSignature(std::uint64_t size, const Read& read) {
    return anyRecordSignature(size, read, [](std::uint32_t) { return true; });
}

/// For a compressed item, whose end most of these programs find by its data; some look for the data descriptor behind it. One of
/// its signatures can be there by chance, but not that of a further record, too.
template <typename Read>
bool holdsDescriptorAndMore(std::uint64_t size, const Read& read) {
    bool hasDescriptor = false;
    return anyRecordSignature(size, read, [&hasDescriptor](std::uint32_t signature) {
        return std::exchange(hasDescriptor, hasDescriptor || signature == DESCRIPTOR);
    });
}

} // namespace opc::physical::zip
