#include "xml/AttributeValues.hpp"

#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainURI.hpp"
#include "xml/SchemaType.hpp"

#include <algorithm>

namespace opc::model {

namespace {

constexpr bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Whether a document can hold a text (XML 1.0 section 2.2), and a type with collapsed white space doesn't change it:
/// its only white space is single blanks inside.
bool standsCollapsed(const std::u16string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const char16_t next = i + 1 < text.size() ? text[i + 1] : u' '; // as if blanks were around it
        if (unit < u' ' || unit > 0xFFFD || isLowSurrogate(unit))
            return false;
        if (unit == u' ' && (i == 0 || next == u' '))
            return false;
        if (isHighSurrogate(unit)) {
            if (!isLowSurrogate(next))
                return false;
            ++i;
        }
    }
    return true;
}

using IsPlain = bool (*)(std::string_view);

bool isASCII(const std::u16string& value) {
    return std::all_of(value.begin(), value.end(), [](char16_t unit) { return unit < 128; });
}

bool isHeld(const std::u16string& value, IsPlain isPlain, SchemaType::Name type) {
    if (isASCII(value) && isPlain(std::string(value.begin(), value.end())))
        return true;
    return standsCollapsed(value) && makeSchemaType(type)->accepts(value);
}

} // namespace

bool isHeldURI(const std::u16string& value) {
    const auto isPlain = [](std::string_view text) { return recognisePlainURI(text) != PlainURI::No; };
    return isHeld(value, isPlain, SchemaType::Name::AnyURI);
}

bool canHoldURI(const std::u16string& value) {
    return fitsIntoTag(value) && isHeldURI(value);
}

bool isHeldID(const std::u16string& value) {
    return isHeld(value, isPlainID, SchemaType::Name::ID);
}

std::u16string collapse(std::u16string_view value) {
    std::u16string collapsed;
    bool isBehindBlank = false;
    for (const char16_t unit : value) {
        const bool isBlank = unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
        if (!isBlank) {
            if (isBehindBlank && !collapsed.empty())
                collapsed += u' ';
            collapsed += unit;
        }
        isBehindBlank = isBlank;
    }
    return collapsed;
}

} // namespace opc::model
