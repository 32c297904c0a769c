#pragma once

#include <opc/model/Export.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace opc::model {

/// A URI reference by RFC 3986, absolute or relative, in US-ASCII: a part name, or the target or type of a relationship.
/// Blanks, quotes, `< > { } | \ ^` and the backtick are accepted too, because real packages contain them.
///
/// The text is kept as it is and never normalised. Comparisons use the whole text and ignore the case of ASCII letters
/// [M1.12]: `/A.xml` equals `/a.xml`, but `/%41` and `/A` differ.
///
/// An immutable value type: different threads can read and copy it. Don't assign to an object while another thread reads
/// it.
class OPC_MODEL_EXPORT URI {
public:
    /// @throws InvalidURI  `text` has a character outside US-ASCII, or isn't a reference
    explicit URI(std::u16string text = std::u16string());

    /// @param text  zero-terminated; null counts as the empty text
    /// @throws InvalidURI  as above
    explicit URI(const char16_t* text);

    /// There is no move: a moved-from URI would have no text.
    URI(const URI& other) = default;
    URI& operator=(const URI& other) = default;

    /// The text as it was given.
    std::u16string toString() const;

    /// Whether there is a scheme that no slash follows, as in `mailto:a@b`. An opaque URI has no authority, path or query.
    bool isOpaque() const;
    /// Whether there is a scheme; the same as `hasScheme`.
    bool isAbsolute() const;
    bool hasScheme() const;
    bool hasFragment() const;
    bool hasAuthority() const;
    bool hasQuery() const;
    /// Whether the path begins with a slash.
    bool hasAbsolutePath() const;

    /// Each gives one component without its delimiters, with percent-encoding unchanged; empty if there is none.
    std::u16string getScheme() const;
    /// Everything after the scheme and before the fragment.
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

    /// Percent-encodes `text` as UTF-8, except the unreserved characters of RFC 3986 section 2.3 and the characters in
    /// `extra`. A percent sign is always encoded, even if two hexadecimal digits follow it.
    static std::u16string encodeComponent(const std::u16string& text, std::string extra);

    /// The same, but the reserved characters of RFC 3986 section 2.2 also stay unchanged.
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

/// These compare the text of the URI with any string; the string isn't parsed.
OPC_MODEL_EXPORT bool operator==(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator!=(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator<(const URI& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator==(const std::u16string& left, const URI& right);
OPC_MODEL_EXPORT bool operator!=(const std::u16string& left, const URI& right);
OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const URI& right);

/// Makes the relative reference that leads from `source` to `target`.
/// @param source, target  each with an absolute path and without a scheme
/// @throws UnsupportedRelativize  an argument has another form, or both have the same path (letter case matters)
OPC_MODEL_EXPORT URI relativize(const URI& source, const URI& target);

/// Resolves `reference` against `base` by RFC 3986 section 5.2.
/// @throws UnsupportedResolve  an argument is opaque
OPC_MODEL_EXPORT URI resolve(const URI& base, const URI& reference);

} // namespace opc::model
