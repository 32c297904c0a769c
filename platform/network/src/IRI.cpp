#include <bedrock/network/IRI.hpp>

#include "IRIGrammar.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace bedrock::network {

namespace {

using std::u16string_view;

bool startsWith(u16string_view text, u16string_view start) {
    return text.substr(0, start.size()) == start;
}

/// The path up to and including its last slash.
u16string_view folderOf(u16string_view path) {
    return path.substr(0, path.rfind(u'/') + 1);
}

/// RFC 3986 section 5.2.4. Each segment is removed from the output at most once, so the time is linear.
std::u16string removeDotSegments(u16string_view input) {
    if (!startsWith(input, u".") && input.find(u"/.") == u16string_view::npos)
        return std::u16string(input); // nearly always
    std::u16string output;
    output.reserve(input.size());
    const auto dropSegment = [&output] {
        const std::size_t slash = output.rfind(u'/');
        output.resize(slash == std::u16string::npos ? 0 : slash);
    };
    while (!input.empty()) {
        if (startsWith(input, u"../")) {
            input.remove_prefix(3);
        } else if (startsWith(input, u"./") || startsWith(input, u"/./")) {
            input.remove_prefix(2);
        } else if (input == u"/.") {
            input = u"/";
        } else if (startsWith(input, u"/../")) {
            input.remove_prefix(3);
            dropSegment();
        } else if (input == u"/..") {
            input = u"/";
            dropSegment();
        } else if (input == u"." || input == u"..") {
            input = {};
        } else {
            const std::size_t end = std::min(input.find(u'/', 1), input.size());
            output += input.substr(0, end);
            input.remove_prefix(end);
        }
    }
    return output;
}

/// Whether a path at the beginning of a reference would be taken for a scheme.
bool beginsLikeScheme(u16string_view path) {
    const std::size_t mark = path.find_first_of(u":/");
    return mark != u16string_view::npos && path[mark] == u':';
}

/// The path from `folder`, which is empty or ends in a slash, to `target`; both have no dot segments. Empty if there
/// is none.
std::u16string relativePath(u16string_view folder, u16string_view target) {
    const auto differing = std::mismatch(folder.begin(), folder.end(), target.begin(), target.end());
    const auto same = static_cast<std::size_t>(differing.first - folder.begin());
    const std::size_t common = folderOf(folder.substr(0, same)).size();
    const u16string_view left = folder.substr(common);
    u16string_view rest = target.substr(common);

    const auto steps = static_cast<std::size_t>(std::count(left.begin(), left.end(), u'/'));
    if (steps == 0) {
        if (rest.empty())
            return u".";
        if (rest.front() == u'/' || beginsLikeScheme(rest))
            return std::u16string(u"./").append(rest);
        return std::u16string(rest);
    }
    // Without a common folder, going up leads to a path that begins with a slash.
    if (common == 0)
        return {};
    std::u16string result;
    for (std::size_t step = 0; step < steps; ++step)
        result += u"../";
    result += rest;
    if (rest.empty())
        result.pop_back();
    return result;
}

/// Whether RFC 3986 allows the character in a URI. The grammar has already checked its place.
bool isURICharacter(char16_t unit) {
    static constexpr auto TABLE = [] {
        std::array<bool, 128> table{};
        for (std::size_t character = 0x21; character < 0x7F; ++character)
            table[character] =
                std::string_view("\"<>\\^`{|}").find(static_cast<char>(character)) == std::string_view::npos;
        return table;
    }();
    return unit < TABLE.size() && TABLE[unit];
}

} // namespace

IRIException::~IRIException() = default;

IRI::IRI(std::u16string reference) : text(std::move(reference)), components(iri::parse(text)) {
}

bool IRI::isOpaque() const noexcept {
    // A path or an authority follows the colon, or nothing.
    return hasScheme() && text[components.schemeLength + 1] != u'/';
}

bool IRI::hasAbsolutePath() const noexcept {
    return components.pathBegin != components.pathEnd && text[components.pathBegin] == u'/';
}

std::u16string IRI::getScheme() const {
    return std::u16string(scheme());
}

std::u16string IRI::getSchemeSpecificPart(const iri::Encoding&) const {
    return std::u16string(slice(hasScheme() ? components.schemeLength + 1 : 0, components.queryEnd));
}

std::u16string IRI::getAuthority(const iri::Encoding&) const {
    return std::u16string(authority());
}

std::u16string IRI::getPath(const iri::Encoding&) const {
    return std::u16string(path());
}

std::u16string IRI::getQuery(const iri::Encoding&) const {
    return std::u16string(hasQuery() ? query().substr(1) : query());
}

std::u16string IRI::getFragment(const iri::Encoding&) const {
    return std::u16string(hasFragment() ? fragment().substr(1) : fragment());
}

u16string_view IRI::slice(std::size_t begin, std::size_t end) const {
    return u16string_view(text).substr(begin, end - begin);
}

u16string_view IRI::authority() const {
    if (!hasAuthority())
        return {};
    const std::size_t slashes = hasScheme() ? components.schemeLength + 1 : 0;
    return slice(slashes + 2, components.pathBegin);
}

IRI IRI::resolveAgainst(const IRI& base) const {
    const IRI* const withScheme = hasScheme() ? this : &base;
    const IRI* const withAuthority = hasScheme() || hasAuthority() ? this : &base;
    std::u16string_view resolvedQuery = query();
    std::u16string resolvedPath;
    if (withAuthority == this || hasAbsolutePath()) {
        resolvedPath = removeDotSegments(path());
    } else if (!path().empty()) {
        const u16string_view folder =
            base.hasAuthority() && base.path().empty() ? u16string_view(u"/") : folderOf(base.path());
        resolvedPath = removeDotSegments(std::u16string(folder).append(path()));
    } else {
        resolvedPath = base.path();
        if (!hasQuery())
            resolvedQuery = base.query();
    }

    std::u16string result;
    result.reserve(resolvedPath.size() + text.size() + base.text.size() + 3);
    if (withScheme->hasScheme())
        result.append(withScheme->scheme()).append(u":");
    if (withAuthority->hasAuthority())
        result.append(u"//").append(withAuthority->authority());
    else if (startsWith(resolvedPath, u"//"))
        result.append(u"/.");
    else if (result.empty() && beginsLikeScheme(resolvedPath))
        result.append(u"./");
    result.append(resolvedPath).append(resolvedQuery).append(fragment());
    return IRI(std::move(result));
}

IRI IRI::makeRelativeTo(const IRI& base) const {
    if (scheme() != base.scheme() || hasAuthority() != base.hasAuthority() || authority() != base.authority())
        return *this;
    if (path() == base.path()) {
        if (query() == base.query())
            return IRI(std::u16string(fragment()));
        if (hasQuery())
            return IRI(std::u16string(query()).append(fragment()));
    }

    const std::u16string folder =
        hasAuthority() && base.path().empty() ? u"/" : removeDotSegments(folderOf(base.path()));
    const std::u16string target = removeDotSegments(path());
    // The path as written: ".//b" is relative, but without its dot segments it begins with a slash.
    if (startsWith(folder, u"/") != startsWith(path(), u"/"))
        return *this;
    std::u16string result = relativePath(folder, target);
    if (result.empty())
        return *this;
    return IRI(result.append(query()).append(fragment()));
}

std::u16string IRI::toAsciiString(bool) const {
    if (std::all_of(text.begin(), text.end(), isURICharacter))
        return text;
    static constexpr char16_t HEX_DIGITS[] = u"0123456789ABCDEF";
    std::u16string result;
    result.reserve(text.size());
    for (const char character : opc::detail::toUTF8String(text, true)) {
        const auto byte = static_cast<unsigned char>(character);
        if (isURICharacter(byte)) {
            result += static_cast<char16_t>(byte);
        } else {
            result += u'%';
            result += HEX_DIGITS[byte >> 4];
            result += HEX_DIGITS[byte & 0x0F];
        }
    }
    return result;
}

} // namespace bedrock::network
