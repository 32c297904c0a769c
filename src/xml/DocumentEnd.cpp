#include "xml/DocumentEnd.hpp"

#include "xml/DocumentUnits.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <cstring>

namespace opc::model {

namespace {

constexpr std::size_t MOST_FOLLOWERS = 5;

/// How many bytes Xerces wants behind this one in UTF-8, even if it begins no character.
std::size_t followersOf(unsigned char byte) {
    return byte < 0xC0   ? 0
           : byte < 0xE0 ? 1
           : byte < 0xF0 ? 2
           : byte < 0xF8 ? 3
           : byte < 0xFC ? 4
                         : MOST_FOLLOWERS;
}

[[noreturn]] void failForZero() {
    throw InvalidXMLDocument("the character U+0000 stands in the document");
}

} // namespace

void DocumentEnd::pass(const unsigned char* bytes, std::size_t count) {
    if (total == 0)
        unitSize = DocumentUnits::of(bytes, count).size;
    if (unitSize == 1 && std::memchr(bytes, 0, count) != nullptr)
        failForZero();
    for (std::size_t i = 0; unitSize > 1 && i < count; ++i) {
        zeros = bytes[i] == 0 ? zeros + 1 : 0;
        if (zeros >= unitSize && (total + i + 1) % unitSize == 0)
            failForZero();
    }
    total += count;
    tail.append(bytes + (count - std::min(count, MOST_FOLLOWERS)), bytes + count);
    tail.erase(0, tail.size() - std::min(tail.size(), MOST_FOLLOWERS));
}

void DocumentEnd::finish() const {
    bool isWhole = total % unitSize == 0;
    for (std::size_t behind = 0; unitSize == 1 && behind < tail.size(); ++behind)
        isWhole =
            isWhole && followersOf(static_cast<unsigned char>(tail[tail.size() - 1 - behind])) <= behind;
    if (!isWhole)
        throw InvalidXMLDocument("the document ends within a character");
}

} // namespace opc::model
