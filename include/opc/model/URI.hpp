#pragma once

#include <opc/model/Export.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace opc::model {

/// A reference by RFC 3986, absolute or relative, in US-ASCII: a part name, a relationship's target or type.
/// Blanks, quotes, `< > { } | \ ^` and the backtick pass as well, since real packages hold them.
///
/// The text is kept as written and never normalised. Comparisons look at the whole text without regard to the
/// case of ASCII letters [M1.12], so `/A.xml` equals `/a.xml`, while `/%41` and `/A` differ.
///
/// An immutable value: copies share one body, and may be read and copied on different threads. One object
/// must not be assigned to while another thread reads it.
class OPC_MODEL_EXPORT URI {
public:
    /// @throws InvalidURI  if `text` has a character beyond US-ASCII, or is no reference
    explicit URI(std::u16string text = std::u16string());

    /// @param text  ends in a zero; null counts as the empty text
    /// @throws InvalidURI  as above
    explicit URI(const char16_t* text);

    /// Shares the body. There is no move, so that no URI is ever left without one.
    URI(const URI& other) = default;
    URI& operator=(const URI& other) = default;

    /// The text as it was given.
    std::u16string toString() const;

    /// Whether there is a scheme and behind it no slash, as in `mailto:a@b`. An opaque URI has neither
    /// authority, path nor query.
    bool isOpaque() const;
    /// Whether there is a scheme.
    bool isAbsolute() const;
    bool hasScheme() const;
    bool hasFragment() const;
    bool hasAuthority() const;
    bool hasQuery() const;
    /// Whether the path begins with a slash.
    bool hasAbsolutePath() const;

    /// Each gives the component without its delimiters, as written, escapes and all; empty if there is none.
    std::u16string getScheme() const;
    /// All between the scheme's colon, or the beginning, and the fragment.
    std::u16string getSchemeSpecificPart() const;
    std::u16string getAuthority() const;
    std::u16string getPath() const;
    std::u16string getQuery() const;
    std::u16string getFragment() const;

    static char16_t getSlash();
    static char16_t getColon();
    static char16_t getDot();

    bool operator==(const URI& other) const;
    bool operator!=(const URI& other) const;
    bool operator<(const URI& other) const;

    /// `text` with every character percent-encoded, as UTF-8, but the unreserved ones of RFC 3986 section 2.3
    /// and those of `extra`. A percent sign is encoded too, also in what looks like an escape.
    static std::u16string encodeComponent(const std::u16string& text, std::string extra);

    /// Likewise, but leaves the reserved characters of RFC 3986 section 2.2 alone too.
    static std::u16string encodeIRI(const std::u16string& text);

private:
    friend class PartName;
    friend class Relationship;
    friend OPC_MODEL_EXPORT bool operator==(const URI& left, const std::u16string& right);
    friend OPC_MODEL_EXPORT bool operator<(const URI& left, const std::u16string& right);
    friend OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const URI& right);
    friend OPC_MODEL_EXPORT URI relativize(const URI& source, const URI& target);
    friend OPC_MODEL_EXPORT URI resolve(const URI& base, const URI& reference);

    struct Impl;

    static constexpr char RESERVED[] = ":/?#[]@!$&'()*+,;=";
    static constexpr char UNRESERVED[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

    void init(std::u16string reference);
    const std::u16string& text() const noexcept;
    std::u16string_view path() const noexcept;
    static std::u16string percentEncode(const std::u16string& text, const std::string& allowed);

    std::shared_ptr<const Impl> impl;
};

/// These compare the text of the URI with a string, which may be anything: it isn't parsed.
OPC_MODEL_EXPORT bool operator==(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator!=(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator<(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator==(const std::u16string& left, const URI& right);
OPC_MODEL_EXPORT bool operator!=(const std::u16string& left, const URI& right);
OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const URI& right);

/// The relative reference that leads from `source` to `target`. Both must have an absolute path and no
/// scheme.
/// @throws UnsupportedRelativize  if they haven't, or if their paths are the same, case counting
OPC_MODEL_EXPORT URI relativize(const URI& source, const URI& target);

/// `reference` resolved against `base` by RFC 3986 section 5.2.
/// @throws UnsupportedResolve  if either is opaque
OPC_MODEL_EXPORT URI resolve(const URI& base, const URI& reference);

} // namespace opc::model
