#include "xml/PlainMarkup.hpp"

#include "xml/PlainCharacters.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace opc::model {

namespace {

/// What needs no escape in an attribute. Numbers, without a branch: so the compiler handles many units at once.
constexpr auto STANDS_IN_ATTRIBUTE = [](char16_t unit) {
    return int{unit >= u' '} & int{unit <= u'~'} & int{unit != u'&'} & int{unit != u'<'} & int{unit != u'"'};
};
constexpr auto STANDS_IN_TEXT = [](char16_t unit) {
    return int{unit >= u' '} & int{unit <= u'~'} & int{unit != u'&'} & int{unit != u'<'} & int{unit != u'>'};
};

/// Whether no unit needs an escape.
template <typename StandsAsItIs>
bool allStandAsTheyAre(std::u16string_view value, StandsAsItIs standsAsItIs) {
    std::uint16_t all = 1;
    for (const char16_t unit : value)
        all &= static_cast<std::uint16_t>(standsAsItIs(unit));
    return all != 0;
}

void appendNarrow(std::u16string_view value, std::string& composed) {
    std::array<char, 256> narrow; // so that the text needn't be cleared to make it longer
    while (!value.empty()) {
        const std::size_t count = std::min(value.size(), narrow.size());
        std::transform(value.begin(), value.begin() + static_cast<std::ptrdiff_t>(count), narrow.begin(),
                       [](char16_t plain) { return static_cast<char>(plain); });
        composed.append(narrow.data(), count);
        value.remove_prefix(count);
    }
}

} // namespace

void PlainMarkup::addAttribute(std::string_view name, std::u16string_view value) {
    *this << " " << name << "=\"";
    add(value, STANDS_IN_ATTRIBUTE);
    *this << "\"";
}

void PlainMarkup::addText(std::u16string_view value) {
    hasOnlyPlainValues = hasOnlyPlainValues && !value.empty();
    add(value, STANDS_IN_TEXT);
}

void PlainMarkup::addUnicodeText(std::u16string_view value) {
    const bool isBlank = !value.empty() && value.find_first_not_of(u" \t\n") == std::u16string_view::npos;
    hasOnlyPlainValues =
        hasOnlyPlainValues && !isBlank && std::all_of(value.begin(), value.end(), plain::isText);
    while (!value.empty()) {
        const std::u16string run(value.substr(0, value.find_first_of(u"&<>")));
        *this << detail::toUTF8String(run, false);
        value.remove_prefix(run.size());
        if (value.empty())
            return;
        addReference(value.front());
        value.remove_prefix(1);
    }
}

template <typename StandsAsItIs>
void PlainMarkup::add(std::u16string_view value, StandsAsItIs standsAsItIs) {
    if (allStandAsTheyAre(value, standsAsItIs)) // nearly always
        return appendNarrow(value, composed);
    for (;;) {
        const auto count = std::find_if_not(value.begin(), value.end(), standsAsItIs) - value.begin();
        appendNarrow(value.substr(0, static_cast<std::size_t>(count)), composed);
        value.remove_prefix(static_cast<std::size_t>(count));
        if (value.empty())
            return;
        addReference(value.front());
        value.remove_prefix(1);
    }
}

void PlainMarkup::addReference(char16_t unit) {
    if (unit == u'&')
        *this << "&amp;";
    else if (unit == u'<')
        *this << "&lt;";
    else if (unit == u'>')
        *this << "&gt;";
    else if (unit == u'"')
        *this << "&quot;";
    else
        hasOnlyPlainValues = false;
}

} // namespace opc::model
