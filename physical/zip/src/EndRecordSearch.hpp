#pragma once

#include "Records.hpp"

#include <cstddef>
#include <cstring>

namespace opc::physical::zip {

/// The last of `count` bytes that has this value; null if there is none.
inline const unsigned char* findLast(const unsigned char* bytes, unsigned char value, std::size_t count) {
#ifdef __linux__ // which looks at many bytes at once
    return static_cast<const unsigned char*>(::memrchr(bytes, value, count));
#else
    while (count > 0)
        if (bytes[--count] == value)
            return bytes + count;
    return nullptr;
#endif
}

/// The last end record whose signature stands in these bytes, recognised by nothing else; null if there is none.
inline const unsigned char* findLastEndRecord(const unsigned char* begin, const unsigned char* end) {
    constexpr std::ptrdiff_t LAST = 3; // the last byte of the signature: it is rare in texts
    while (end - begin > LAST) {
        const auto room = static_cast<std::size_t>(end - begin - LAST);
        const unsigned char* const last = findLast(begin + LAST, DIRECTORY_END >> 24, room);
        if (!last || read32(last - LAST) == DIRECTORY_END)
            return last ? last - LAST : nullptr;
        end = last;
    }
    return nullptr;
}

} // namespace opc::physical::zip
