#include "xml/PlainMarkup.hpp"

#include "xml/PlainCharacters.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::model {

namespace {

bool isPrintable(char16_t unit) {
    return unit >= u' ' && unit <= u'~';
}

} // namespace

void PlainMarkup::addAttribute(std::string_view name, std::u16string_view value) {
    *this << " " << name << "=\"";
    add(value,
        [](char16_t unit) { return isPrintable(unit) && unit != u'&' && unit != u'<' && unit != u'"'; });
    *this << "\"";
}

void PlainMarkup::addText(std::u16string_view value) {
    hasOnlyPlainValues = hasOnlyPlainValues && !value.empty();
    add(value,
        [](char16_t unit) { return isPrintable(unit) && unit != u'&' && unit != u'<' && unit != u'>'; });
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
    for (;;) {
        const auto count = std::find_if_not(value.begin(), value.end(), standsAsItIs) - value.begin();
        const std::size_t end = composed.size();
        composed.resize(end + static_cast<std::size_t>(count));
        std::transform(value.begin(), value.begin() + count,
                       composed.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char16_t plain) { return static_cast<char>(plain); });
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
