#pragma once

#include <bedrock/network/Export.hpp>
#include <bedrock/network/IRIException.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace bedrock::network {

namespace iri {

/// The form in which a component of a reference is returned.
enum class Encoding : std::uint32_t {
    AsWritten = 1, ///< as it is in the text, with percent-encoding unchanged
};

/// The positions of the components of a reference in its text.
struct Components {
    std::size_t schemeLength = 0; ///< 0 without a scheme: a scheme has at least one letter
    bool hasAuthority = false;    ///< the authority is between two slashes and the path
    std::size_t pathBegin = 0;
    std::size_t pathEnd = 0;  ///< the question mark, if there is a query
    std::size_t queryEnd = 0; ///< the number sign, if there is a fragment
};

} // namespace iri

/// A reference, absolute or relative, by the grammar of RFC 3987 with the characters of Legacy Extended IRIs.
///
/// Blanks, quotes, `< > { } | \ ^`, the backtick and all characters outside ASCII are ordinary characters. The structure is
/// checked strictly: the syntax of the scheme, two hexadecimal digits after each percent sign, one fragment, brackets
/// only around an IP literal, digits in a port, no colon in the first segment of a relative path. Characters that XML 1.0
/// doesn't allow are refused too: control characters except tab, line feed and carriage return, lone surrogates, U+FFFE
/// and U+FFFF.
///
/// A value type that owns its text. Only assignment changes it, so threads can share it.
class BEDROCK_NETWORK_EXPORT IRI {
public:
    /// @param reference  a reference; the empty text is one
    /// @throws IRIException  `reference` has another form
    explicit IRI(std::u16string reference);

    const std::u16string& toString() const noexcept { return text; }

    /// Whether the reference has a scheme that no slash follows, as in `mailto:a@b`: it has no hierarchy of names.
    bool isOpaque() const noexcept;
    /// Whether the reference has a scheme.
    bool isAbsolute() const noexcept { return hasScheme(); }
    bool hasScheme() const noexcept { return components.schemeLength != 0; }
    /// Whether two slashes introduce an authority; it can be empty, as in `file:///a`.
    bool hasAuthority() const noexcept { return components.hasAuthority; }
    /// Whether the path begins with a slash.
    bool hasAbsolutePath() const noexcept;
    bool hasQuery() const noexcept { return components.pathEnd != components.queryEnd; }
    bool hasFragment() const noexcept { return components.queryEnd != text.size(); }

    std::u16string getScheme() const;
    /// Everything after the scheme and before the fragment.
    std::u16string getSchemeSpecificPart(const iri::Encoding& encoding) const;
    std::u16string getAuthority(const iri::Encoding& encoding) const;
    std::u16string getPath(const iri::Encoding& encoding) const;
    std::u16string getQuery(const iri::Encoding& encoding) const;
    std::u16string getFragment(const iri::Encoding& encoding) const;

    /// Resolves this reference against `base`, strictly by RFC 3986 section 5.2.
    ///
    /// If the text of the result would be parsed into other components, because a path without authority begins with two
    /// slashes or a relative path has a colon in its first segment, a dot segment is put before the path.
    IRI resolveAgainst(const IRI& base) const;

    /// Makes the shortest relative reference from `base` to this reference: `resolveAgainst(base)` converts it back, without
    /// dot segments.
    /// @return this reference itself if there is no relative one, for example because scheme or authority differ
    IRI makeRelativeTo(const IRI& base) const;

    /// Converts the reference to a URI by RFC 3986 in US-ASCII: other characters are percent-encoded as UTF-8. Existing
    /// percent-encoding stays.
    /// @param normalize  has no effect: the text is never changed further
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
