#include "xml/LongTags.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>

namespace opc::model {

namespace {

constexpr std::size_t LONGEST_VALUE = LONGEST_TAG / 4;

std::size_t writtenSize(char16_t unit) {
    constexpr std::size_t LONGEST_ESCAPE = 6; // &quot;
    const bool isEscaped = unit == u'&' || unit == u'<' || unit == u'>' || unit == u'"' || unit < u' ';
    const std::size_t sizeInUTF8 = unit < 0x80 ? 1 : 3;
    return isEscaped ? LONGEST_ESCAPE : sizeInUTF8;
}

} // namespace

bool hasLongTag(std::string_view document) {
    std::size_t begin = 0;
    while (document.size() - begin > LONGEST_TAG) {
        const std::size_t next = std::min(document.find('<', begin + 1), document.size());
        if (next - begin > LONGEST_TAG)
            return true;
        begin = next;
    }
    return false;
}

void throwIfTagIsTooLong(std::string_view document) {
    if (hasLongTag(document))
        throw InvalidPartContent(TAG_IS_TOO_LONG);
}

std::size_t sizeInTag(std::u16string_view value) {
    std::size_t size = 0;
    for (const char16_t unit : value)
        size += writtenSize(unit);
    return size;
}

bool fitsIntoTag(std::u16string_view value) {
    return sizeInTag(value) <= LONGEST_VALUE;
}

} // namespace opc::model
