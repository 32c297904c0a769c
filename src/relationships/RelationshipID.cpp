#include "relationships/RelationshipID.hpp"

#include <algorithm>
#include <iterator>

namespace opc::model {

namespace {

struct Range {
    char16_t first, last;
};

constexpr Range NAME_START_CHARS[] = {
    {u'A', u'Z'},     {u'_', u'_'},     {u'a', u'z'},     {0x00C0, 0x00D6}, {0x00D8, 0x00F6},
    {0x00F8, 0x02FF}, {0x0370, 0x037D}, {0x037F, 0x1FFF}, {0x200C, 0x200D}, {0x2070, 0x218F},
    {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD},
};

/// The further characters that a name may have after its first one.
constexpr Range MORE_NAME_CHARS[] = {
    {u'-', u'.'}, {u'0', u'9'}, {0x00B7, 0x00B7}, {0x0300, 0x036F}, {0x203F, 0x2040},
};

template <std::size_t N>
bool isWithin(const Range (&ranges)[N], char16_t unit) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [unit](const Range& range) { return unit >= range.first && unit <= range.last; });
}

bool isNameStartChar(char16_t unit) {
    return isWithin(NAME_START_CHARS, unit);
}

bool isNameChar(char16_t unit) {
    return isNameStartChar(unit) || isWithin(MORE_NAME_CHARS, unit);
}

} // namespace

bool isRelationshipID(const std::u16string& id) {
    return !id.empty() && isNameStartChar(id.front()) && std::all_of(id.begin() + 1, id.end(), isNameChar);
}

} // namespace opc::model
