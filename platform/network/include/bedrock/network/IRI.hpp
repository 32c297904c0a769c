#pragma once

#include <bedrock/network/Export.hpp>
#include <bedrock/network/IRIException.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace bedrock::network {

namespace iri {

/// How a component of a reference is given.
enum class Encoding : std::uint32_t {
    AsWritten = 1, ///< as it stands in the text, percent escapes and all
};

/// Where the components of a reference lie in its text.
struct Components {
    std::size_t schemeLength = 0; ///< 0 without a scheme: a scheme has at least one letter
    bool hasAuthority = false;    ///< if so, it stands between two slashes and the path
    std::size_t pathBegin = 0;
    std::size_t pathEnd = 0;  ///< the question mark, if there is a query
    std::size_t queryEnd = 0; ///< the number sign, if there is a fragment
};

} // namespace iri

/// A reference, absolute or relative, by the grammar of RFC 3987 with the characters of Legacy Extended IRIs.
///
/// Blanks, quotes, `< > { } | \ ^`, the backtick and everything beyond ASCII count as ordinary characters.
/// The structure is strict: the scheme's syntax, two hexadecimal digits behind each percent sign, one
/// fragment, brackets round an IP literal and nowhere else, digits in a port, no colon in the first segment
/// of a relative path. What XML 1.0 can't hold is refused too: control characters but tab, line feed and
/// carriage return, lone surrogates, U+FFFE and U+FFFF.
///
/// A value that owns its text. It doesn't change but by assignment, so threads may share it.
class BEDROCK_NETWORK_EXPORT IRI {
public:
    /// @param reference  an empty text is one
    /// @throws IRIException  if it is none
    explicit IRI(std::u16string reference);

    const std::u16string& toString() const noexcept { return text; }

    /// Whether the reference has a scheme and behind it no slash, as `mailto:a@b` does: no hierarchy of
    /// names.
    bool isOpaque() const noexcept;
    /// Whether the reference has a scheme.
    bool isAbsolute() const noexcept { return hasScheme(); }
    bool hasScheme() const noexcept { return components.schemeLength != 0; }
    /// Whether two slashes introduce an authority, be it empty as in `file:///a`.
    bool hasAuthority() const noexcept { return components.hasAuthority; }
    /// Whether the path begins with a slash.
    bool hasAbsolutePath() const noexcept;
    bool hasQuery() const noexcept { return components.pathEnd != components.queryEnd; }
    bool hasFragment() const noexcept { return components.queryEnd != text.size(); }

    std::u16string getScheme() const;
    /// All between the scheme's colon, or the beginning, and the fragment.
    std::u16string getSchemeSpecificPart(const iri::Encoding& encoding) const;
    std::u16string getAuthority(const iri::Encoding& encoding) const;
    std::u16string getPath(const iri::Encoding& encoding) const;
    std::u16string getQuery(const iri::Encoding& encoding) const;
    std::u16string getFragment(const iri::Encoding& encoding) const;

    /// This reference resolved against `base`, strictly by RFC 3986 section 5.2.
    ///
    /// Where the text of the result would read otherwise than its components say, because a path without
    /// authority begins with two slashes or a relative one has a colon in its first segment, a dot segment in
    /// front of the path keeps them apart.
    IRI resolveAgainst(const IRI& base) const;

    /// The shortest relative path that leads from `base` to this reference: `resolveAgainst(base)` turns it
    /// back into this one, without its dot segments.
    ///
    /// Where no relative path does, because scheme or authority differ for instance, it is this reference.
    IRI makeRelativeTo(const IRI& base) const;

    /// The reference in US-ASCII, a URI by RFC 3986: every character not allowed there becomes percent
    /// escapes of its UTF-8 bytes. Escapes in the text stay as they are.
    /// @param normalize  without effect: the text is never changed further
    std::u16string toAsciiString(bool normalize) const;

private:
    std::u16string_view slice(std::size_t begin, std::size_t end) const;
    std::u16string_view scheme() const { return slice(0, components.schemeLength); }
    std::u16string_view authority() const;
    std::u16string_view path() const { return slice(components.pathBegin, components.pathEnd); }
    /// The query with its question mark, the fragment with its number sign; empty without.
    std::u16string_view query() const { return slice(components.pathEnd, components.queryEnd); }
    std::u16string_view fragment() const { return slice(components.queryEnd, text.size()); }

    std::u16string text;
    iri::Components components;
};

} // namespace bedrock::network
