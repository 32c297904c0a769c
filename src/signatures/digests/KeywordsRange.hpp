#pragma once

#include <cstddef>
#include <string_view>

namespace opc::model {

/// Bytes of a core properties part that no signature covers.
struct KeywordsRange {
    std::size_t begin = 0;
    std::size_t size = 0; ///< 0 if there are none
};

/// The bytes from the first opening tag of keywords to the first closing one. The search compares bytes: it doesn't
/// find tags in another form, and then the whole content counts.
inline KeywordsRange findKeywords(std::string_view content) {
    constexpr std::string_view OPENING = "<cp:keywords>";
    constexpr std::string_view CLOSING = "</cp:keywords>";
    const std::size_t begin = content.find(OPENING);
    const std::size_t end = content.find(CLOSING);
    if (begin == std::string_view::npos || end == std::string_view::npos || end < begin)
        return {};
    return {begin, end + CLOSING.size() - begin};
}

} // namespace opc::model
