#include "IRIGrammar.hpp"

#include <algorithm>
#include <array>

namespace bedrock::network::iri {

namespace {

using std::u16string_view;

/// The meaning of an ASCII character in the grammar, as bits, so that a mask is a set of meanings.
enum Kind : std::uint8_t {
    Plain = 0, // allowed in every component
    Colon = 1,
    Slash = 2,
    Question = 4,
    Number = 8,
    Percent = 16,
    Bracket = 32,
    Control = 64, // not allowed in XML 1.0
};

constexpr std::array<std::uint8_t, 128> classify() {
    std::array<std::uint8_t, 128> kinds{};
    for (std::size_t unit = 0; unit < 0x20; ++unit)
        kinds[unit] = Control;
    kinds['\t'] = kinds['\n'] = kinds['\r'] = Plain;
    kinds[':'] = Colon;
    kinds['/'] = Slash;
    kinds['?'] = Question;
    kinds['#'] = Number;
    kinds['%'] = Percent;
    kinds['['] = kinds[']'] = Bracket;
    return kinds;
}

constexpr std::array<std::uint8_t, 128> KINDS = classify();

constexpr bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
constexpr bool isLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}
constexpr bool isHexDigit(char16_t unit) {
    return isDigit(unit) || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}
constexpr bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

template <typename Predicate>
bool all(u16string_view text, Predicate predicate) {
    return std::all_of(text.begin(), text.end(), predicate);
}

/// The position after the non-ASCII character at `position`. A null character follows the text, so the next unit can
/// always be read.
std::size_t skipBeyondASCII(const std::u16string& text, std::size_t position) {
    const char16_t unit = text[position];
    if (isHighSurrogate(unit) && isLowSurrogate(text[position + 1]))
        return position + 2;
    if (isHighSurrogate(unit) || isLowSurrogate(unit))
        throw IRIException("a surrogate stands alone");
    if (unit >= 0xFFFE)
        throw IRIException("U+FFFE and U+FFFF are no characters");
    return position + 1;
}

/// Checks the characters from `position` up to the first one whose kind is among `delimiters`.
/// @return its position, or the end of the text
std::size_t scan(const std::u16string& text, std::size_t position, unsigned delimiters, unsigned refused) {
    while (position < text.size()) {
        const char16_t unit = text[position];
        if (unit >= KINDS.size()) {
            position = skipBeyondASCII(text, position);
            continue;
        }
        const std::uint8_t kind = KINDS[unit];
        if (kind != Plain) {
            if ((kind & delimiters) != 0)
                return position;
            if ((kind & refused) != 0)
                throw IRIException("a character stands where it isn't allowed");
            if (kind == Percent && !(isHexDigit(text[position + 1]) && isHexDigit(text[position + 2])))
                throw IRIException("a percent sign isn't followed by two hexadecimal digits");
        }
        ++position;
    }
    return position;
}

bool isScheme(u16string_view text) {
    return !text.empty() && isLetter(text.front()) && all(text, [](char16_t unit) {
        return isLetter(unit) || isDigit(unit) || unit == u'+' || unit == u'-' || unit == u'.';
    });
}

/// RFC 3986 section 3.2.2: four numbers up to 255, without leading zeros.
bool isIPv4Address(u16string_view text) {
    for (int number = 0; number < 4; ++number) {
        const std::size_t end = number < 3 ? text.find(u'.') : text.size();
        if (end == u16string_view::npos)
            return false;
        const u16string_view digits = text.substr(0, end);
        if (digits.empty() || digits.size() > 3 || !all(digits, isDigit))
            return false;
        if (digits.size() > 1 && digits.front() == u'0')
            return false;
        if (digits.size() == 3 && digits > u"255")
            return false;
        text.remove_prefix(number < 3 ? end + 1 : end);
    }
    return true;
}

/// RFC 3986 section 3.2.2: eight groups, or fewer around one double colon. The last two may be an IPv4 address.
bool isIPv6Address(u16string_view text) {
    std::size_t groups = 0;
    bool compressed = false;
    if (text.substr(0, 2) == u"::") {
        compressed = true;
        text.remove_prefix(2);
    }
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(u':'), text.size());
        const u16string_view group = text.substr(0, end);
        const bool last = end == text.size();
        text.remove_prefix(last ? end : end + 1);
        if (last && group.find(u'.') != u16string_view::npos) {
            if (!isIPv4Address(group))
                return false;
            groups += 2;
            break;
        }
        if (group.empty() || group.size() > 4 || !all(group, isHexDigit))
            return false;
        ++groups;
        if (last)
            break;
        if (text.empty())
            return false;
        if (text.front() == u':') {
            if (compressed)
                return false;
            compressed = true;
            text.remove_prefix(1);
        }
    }
    return compressed ? groups < 8 : groups == 8;
}

/// RFC 3986 section 3.2.2: "v", the version in hexadecimal digits, a dot, and an address of any later form.
bool isIPvFuture(u16string_view text) {
    if (text.empty() || (text.front() != u'v' && text.front() != u'V'))
        return false;
    const std::size_t dot = text.find(u'.');
    if (dot == u16string_view::npos || dot == 1 || dot + 1 == text.size())
        return false;
    return all(text.substr(1, dot - 1), isHexDigit) && all(text.substr(dot + 1), [](char16_t unit) {
               return isLetter(unit) || isDigit(unit) ||
                      u16string_view(u"-._~!$&'()*+,;=:").find(unit) != u16string_view::npos;
           });
}

/// RFC 3986 section 3.2: an optional user before "@", a host, and an optional port after a colon. The characters were
/// already checked.
void checkAuthority(u16string_view authority) {
    const std::size_t at = authority.find(u'@');
    const bool hasUser = at != u16string_view::npos;
    u16string_view host = hasUser ? authority.substr(at + 1) : authority;
    if (hasUser && authority.substr(0, at).find_first_of(u"[]") != u16string_view::npos)
        throw IRIException("a bracket stands outside an IP literal");

    u16string_view port;
    if (!host.empty() && host.front() == u'[') {
        const std::size_t close = std::min(host.find(u']'), host.size());
        const u16string_view literal = host.substr(1, close - 1);
        if (close == host.size() || !(isIPv6Address(literal) || isIPvFuture(literal)))
            throw IRIException("brackets hold no IP literal");
        port = host.substr(close + 1);
    } else {
        const std::size_t end = std::min(host.find(u':'), host.size());
        if (host.substr(0, end).find_first_of(u"[]@") != u16string_view::npos)
            throw IRIException("a host has a bracket or an at sign");
        port = host.substr(end);
    }
    if (!port.empty() && !(port.front() == u':' && all(port.substr(1), isDigit)))
        throw IRIException("a port isn't made of digits");
}

/// Whether a text is just a path of usual characters, as nearly every part name and target is.
bool isPlainPath(u16string_view text) {
    std::uint16_t isOther = 0; // a number, in a loop without an exit: so the compiler handles many at once
    for (const std::uint16_t unit : text) {
        const auto isNoLetter = static_cast<std::uint16_t>((unit | 0x20) - u'a') > 25;
        const auto isNoneOfPaths = static_cast<std::uint16_t>(unit - u'-') > 12; // '-', '.', '/' and digits
        isOther |= static_cast<std::uint16_t>(isNoLetter & isNoneOfPaths & (unit != u'_'));
    }
    return isOther == 0 && text.substr(0, 2) != u"//";
}

} // namespace

Components parse(const std::u16string& text) {
    const u16string_view view = text;
    if (isPlainPath(view))
        return {0, false, 0, view.size(), view.size()};
    Components found;
    std::size_t position = scan(text, 0, Colon | Slash | Question | Number, Control | Bracket);
    if (position < text.size() && text[position] == u':') {
        if (!isScheme(view.substr(0, position)))
            throw IRIException("a colon in the first segment follows no scheme");
        found.schemeLength = position;
        found.pathBegin = ++position;
    }
    if (view.substr(found.pathBegin, 2) == u"//") {
        const std::size_t begin = found.pathBegin + 2;
        position = scan(text, begin, Slash | Question | Number, Control);
        checkAuthority(view.substr(begin, position - begin));
        found.hasAuthority = true;
        found.pathBegin = position;
    }
    found.pathEnd = scan(text, position, Question | Number, Control | Bracket);
    found.queryEnd = found.pathEnd;
    if (found.pathEnd < text.size() && text[found.pathEnd] == u'?')
        found.queryEnd = scan(text, found.pathEnd + 1, Number, Control | Bracket);
    if (found.queryEnd < text.size())
        scan(text, found.queryEnd + 1, 0, Control | Bracket | Number);
    return found;
}

} // namespace bedrock::network::iri
