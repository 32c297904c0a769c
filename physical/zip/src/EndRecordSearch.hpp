#pragma once

#include "Records.hpp"

#include <cstddef>
#include <cstring>

namespace opc::physical::zip {

/// The last end record whose signature stands in these bytes, recognised by nothing else; null if there is none.
inline const unsigned char* findLastEndRecord(const unsigned char* begin, const unsigned char* end) {
    constexpr std::ptrdiff_t LAST = 3; // the last byte of the signature: it is rare in texts
    while (end - begin > LAST) {
        const auto room = static_cast<std::size_t>(end - begin - LAST);
        const auto* last =
            static_cast<const unsigned char*>(::memrchr(begin + LAST, DIRECTORY_END >> 24, room));
        if (!last || read32(last - LAST) == DIRECTORY_END)
            return last ? last - LAST : nullptr;
        end = last;
    }
    return nullptr;
}

} // namespace opc::physical::zip
