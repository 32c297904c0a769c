#pragma once

#include "support/PackageContent.hpp"

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>

namespace opc::test {

/// A document with one to three changes: bytes replaced, dropped, repeated, or copied from elsewhere in it.
inline Bytes mutate(Bytes document, std::mt19937& random) {
    static const std::string BYTES = "<>/=\"' \n\t&;:%#?.-_~aZ0xml!\x01\x80\xC3";
    const auto below = [&random](std::size_t bound) { return bound == 0 ? 0 : random() % bound; };
    for (std::size_t changes = 1 + below(3); changes > 0 && !document.empty(); --changes) {
        const std::size_t at = below(document.size());
        const std::size_t length = std::min(1 + below(12), document.size() - at);
        const auto begin = document.begin() + static_cast<std::ptrdiff_t>(at);
        const Bytes piece(begin, begin + static_cast<std::ptrdiff_t>(length));
        switch (below(4)) {
        case 0:
            *begin = static_cast<unsigned char>(BYTES[below(BYTES.size())]);
            break;
        case 1:
            document.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
            break;
        case 2:
            document.insert(begin, piece.begin(), piece.end());
            break;
        default:
            document.insert(document.begin() + static_cast<std::ptrdiff_t>(below(document.size())),
                            piece.begin(), piece.end());
        }
    }
    return document;
}

} // namespace opc::test
