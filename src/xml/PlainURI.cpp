#include "xml/PlainURI.hpp"

#include "xml/PlainCharacters.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <string>

namespace opc::model {

namespace {

using plain::areAll;
using plain::is;

/// The position of the first character of these kinds; the end of the text if there is none.
std::size_t findKind(std::string_view text, unsigned kinds) {
    const auto* const found =
        std::find_if(text.begin(), text.end(), [kinds](char c) { return is(c, kinds); });
    return static_cast<std::size_t>(found - text.begin());
}

bool isScheme(std::string_view text) {
    return !text.empty() && is(text.front(), plain::Letter) &&
           std::all_of(text.begin(), text.end(), [](char c) {
               return is(c, plain::Letter | plain::Digit) || c == '+' || c == '-' || c == '.';
           });
}

/// Whether a text is a host name: labels of letters and digits, with hyphens inside. The last label begins with a
/// letter (RFC 2396 section 3.2.2).
bool isHostName(std::string_view text) {
    for (;;) {
        const std::size_t dot = text.find('.');
        const std::string_view label = text.substr(0, dot);
        if (label.empty() || label.front() == '-' || label.back() == '-')
            return false;
        if (!std::all_of(label.begin(), label.end(),
                         [](char c) { return is(c, plain::Letter | plain::Digit) || c == '-'; }))
            return false;
        if (dot == std::string_view::npos)
            return is(label.front(), plain::Letter);
        text.remove_prefix(dot + 1);
    }
}

/// Whether a text is a host name, and a port if there is a colon.
bool isPlainAuthority(std::string_view text) {
    constexpr std::size_t MOST_DIGITS = 5;
    const std::size_t colon = std::min(text.find(':'), text.size());
    if (colon < text.size()) {
        const std::string_view port = text.substr(colon + 1);
        if (port.empty() || port.size() > MOST_DIGITS || !areAll(port, plain::Digit))
            return false;
    }
    return isHostName(text.substr(0, colon));
}

/// Whether the text begins with an authority, or would do so if backslashes were slashes.
bool beginsLikeAuthority(std::string_view text) {
    return text.size() > 1 && (text[0] == '/' || text[0] == '\\') && (text[1] == '/' || text[1] == '\\');
}

/// Whether all characters of a text in UTF-8 that are beyond ASCII are allowed in a reference.
bool isPlainUnicode(std::string_view text) {
    constexpr char16_t REPLACEMENT = 0xFFFD; // also the replacement for invalid UTF-8
    const std::u16string units = toString(std::string(text), true);
    return std::all_of(units.begin(), units.end(),
                       [](char16_t unit) { return unit < 0x80 || (unit >= 0xA0 && unit < REPLACEMENT); });
}

/// The position of the next character that is plain nowhere.
std::size_t findOther(std::string_view text, std::size_t position) {
    const auto* const found =
        std::find_if_not(text.begin() + position, text.end(), [](char c) { return is(c, plain::URIPlain); });
    return static_cast<std::size_t>(found - text.begin());
}

/// Checks path, query and fragment, which allow nearly the same characters.
/// @param kind  the result for a text in ASCII
PlainURI recogniseRest(std::string_view text, PlainURI kind) {
    bool hasFragment = false;
    bool isASCII = true;
    for (std::size_t at = findOther(text, 0); at < text.size(); at = findOther(text, at)) {
        const char c = text[at++];
        if (c == '%' && text.size() - at >= 2 && areAll(text.substr(at, 2), plain::HexDigit))
            at += 2;
        else if (c == ' ' && at > 1 && at < text.size() && text[at] != ' ')
            continue; // a single blank isn't changed when white space is collapsed
        else if (c == '#' && !hasFragment)
            hasFragment = true;
        else if (is(c, plain::BeyondASCII))
            isASCII = false;
        else
            return PlainURI::No;
    }
    if (isASCII)
        return kind;
    return isPlainUnicode(text) ? PlainURI::IRI : PlainURI::No;
}

/// Checks what follows any other scheme and its colon.
PlainURI recogniseOtherScheme(std::string_view text) {
    if (text.substr(0, 3) == "///") // an authority, which is empty
        return recogniseRest(text.substr(2), PlainURI::OtherScheme);
    if (text.empty() || text.front() == '#' || beginsLikeAuthority(text))
        return PlainURI::No;
    return recogniseRest(text, PlainURI::OtherScheme);
}

/// How the types of nearly all relationships begin.
constexpr std::string_view USUAL_AUTHORITY = "http://schemas.openxmlformats.org";

} // namespace

PlainURI recognisePlainURI(std::string_view text) {
    if (text.size() > USUAL_AUTHORITY.size() && text[USUAL_AUTHORITY.size()] == '/' &&
        text.substr(0, USUAL_AUTHORITY.size()) == USUAL_AUTHORITY)
        return recogniseRest(text.substr(USUAL_AUTHORITY.size()), PlainURI::Reference);
    const std::size_t end = findKind(text, plain::Colon | plain::Delimiter);
    if (end < text.size() && text[end] == ':') {
        const std::string_view scheme = text.substr(0, end);
        std::string_view rest = text.substr(end + 1);
        if ((scheme != "http" && scheme != "https") || rest.substr(0, 2) != "//")
            return isScheme(scheme) ? recogniseOtherScheme(rest) : PlainURI::No;
        rest.remove_prefix(2);
        const std::size_t path = findKind(rest, plain::Delimiter);
        return isPlainAuthority(rest.substr(0, path)) ? recogniseRest(rest.substr(path), PlainURI::Reference)
                                                      : PlainURI::No;
    }
    if (text.empty() || beginsLikeAuthority(text))
        return PlainURI::No;
    return recogniseRest(text, PlainURI::Reference);
}

} // namespace opc::model
