#include "properties/Vocabulary.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace opc::editing::properties {

namespace {

struct TypedName {
    std::string_view name, type;
};

constexpr TypedName EXTENDED[] = {
    {"Template", "lpwstr"},
    {"Manager", "lpwstr"},
    {"Company", "lpwstr"},
    {"Pages", "i4"},
    {"Words", "i4"},
    {"Characters", "i4"},
    {"PresentationFormat", "lpwstr"},
    {"Lines", "i4"},
    {"Paragraphs", "i4"},
    {"Slides", "i4"},
    {"Notes", "i4"},
    {"TotalTime", "i4"},
    {"HiddenSlides", "i4"},
    {"MMClips", "i4"},
    {"ScaleCrop", "bool"},
    {"HeadingPairs", "vector"},
    {"TitlesOfParts", "vector"},
    {"LinksUpToDate", "bool"},
    {"CharactersWithSpaces", "i4"},
    {"SharedDoc", "bool"},
    {"HyperlinkBase", "lpwstr"},
    {"HLinks", "vector"},
    {"HyperlinksChanged", "bool"},
    {"Application", "lpwstr"},
    {"AppVersion", "lpwstr"},
    {"DocSecurity", "i4"},
};

struct Range {
    std::string_view type;
    std::int64_t least;
    std::uint64_t most;
};

template <typename Number>
constexpr Range rangeOf(std::string_view type) {
    return {type, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
}

constexpr Range INTEGERS[] = {
    rangeOf<std::int8_t>("i1"),     rangeOf<std::int16_t>("i2"),   rangeOf<std::int32_t>("i4"),
    rangeOf<std::int64_t>("i8"),    rangeOf<std::int32_t>("int"),  rangeOf<std::uint8_t>("ui1"),
    rangeOf<std::uint16_t>("ui2"),  rangeOf<std::uint32_t>("ui4"), rangeOf<std::uint64_t>("ui8"),
    rangeOf<std::uint32_t>("uint"),
};

bool areDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string_view withoutSign(std::string_view text) {
    return text.substr(text.substr(0, 1) == "-" || text.substr(0, 1) == "+" ? 1 : 0);
}

bool isWithin(const std::string& text, const Range& range) {
    if (!areDigits(withoutSign(text)))
        return false;
    errno = 0;
    if (text[0] == '-') {
        const long long number = std::strtoll(text.c_str(), nullptr, 10);
        return errno == 0 && number >= range.least;
    }
    const unsigned long long number = std::strtoull(text.c_str(), nullptr, 10);
    return errno == 0 && number <= range.most;
}

bool isDecimal(std::string_view text) {
    std::string digits(withoutSign(text));
    if (const std::size_t point = digits.find('.'); point != std::string::npos)
        digits.erase(point, 1);
    return areDigits(digits);
}

bool isReal(std::string_view text) {
    if (text == "INF" || text == "-INF" || text == "NaN")
        return true;
    const std::size_t exponent = text.find_first_of("eE");
    return isDecimal(text.substr(0, exponent)) &&
           (exponent == std::string_view::npos || areDigits(withoutSign(text.substr(exponent + 1))));
}

/// By the form of XML Schema, which has time and seconds.
bool isTime(const std::string& text) {
    return text.size() >= 19 && !convertStringToTime(toString(text, true)).is_not_a_date_time();
}

bool isWritable(const std::string& text) {
    const std::u16string wide = toString(text, true);
    return toUDEString(wide) == text && std::all_of(wide.begin(), wide.end(), [](char16_t unit) {
               return unit == u'\t' || unit == u'\n' || (unit >= u' ' && unit < u'\uFFFE');
           });
}

} // namespace

std::string_view typeOfExtended(std::string_view name) {
    const auto* const found = std::find_if(std::begin(EXTENDED), std::end(EXTENDED),
                                           [name](const TypedName& one) { return one.name == name; });
    return found == std::end(EXTENDED) ? std::string_view() : found->type;
}

bool isText(std::string_view type) {
    return type == "lpwstr" || type == "lpstr" || type == "bstr";
}

std::string findDefectOfValue(std::string_view type, const std::string& text) {
    if (isText(type))
        return isWritable(text) ? "" : "has a character that XML can't hold";
    for (const Range& range : INTEGERS)
        if (range.type == type)
            return isWithin(text, range) ? ""
                                         : "isn't a whole number within the range of " + std::string(type);
    if (type == "bool")
        return text == "true" || text == "false" || text == "1" || text == "0" ? "" : "isn't true or false";
    if (type == "decimal")
        return isDecimal(text) ? "" : "isn't a decimal number";
    if (type == "r4" || type == "r8")
        return isReal(text) ? "" : "isn't a number";
    if (type == "date" || type == "filetime")
        return isTime(text) ? "" : "isn't a time; write 2024-02-29T13:45:59Z";
    return "has a type that can't be set: " + std::string(type);
}

} // namespace opc::editing::properties
