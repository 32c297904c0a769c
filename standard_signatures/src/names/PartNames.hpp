#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Part names here are UTF-8 without percent-encoding, but for what they need not encode.

/// Whether it needs no percent-encoding anywhere (RFC 3986 section 2.3).
bool isUnreserved(char c);

/// Whether it may stand in a segment of a path as it is (RFC 3986 section 3.3).
bool isPathCharacter(char c);

/// Resolves each `%` with two hexadecimal digits; everything else stays.
std::string decodePercent(std::string_view text);

/// The same for the name of a part as it is written, where it resolves only what a name can't have as it is. What is encoded
/// nevertheless, or with digits in lower case, stays: for programs that compare names as they are written, it is another name.
std::string decodePartName(std::string name);

/// What the names of parts have in common that some programs take for the same: without regard to the case of ASCII letters
/// and to what is encoded, but for a slash, a backslash and what must not be encoded [M1.7] [M1.8].
std::string partKeyOf(std::string_view name);

/// Whether `partKeyOf` leaves a name as it is, as it does most names.
bool isPartKey(std::string_view name);

/// Whether everybody reads the same name of a part from this: it begins with a slash, no segment is empty or ends with a dot,
/// and no character has a meaning of its own in a URI or a path of a system.
bool isPlainPartName(std::string_view name);

/// The text with ASCII letters in lower case.
std::string keyOf(std::string_view name);

/// Whether that text begins or ends with another one.
bool keyBeginsWith(std::string_view name, std::string_view key);
bool keyEndsWith(std::string_view name, std::string_view key);

/// Whether programs take a package with such a part for a document of another format, whatever its relationships say.
/// @param key  the name in lower case
bool marksOtherFormat(std::string_view key);

/// Whether it begins with a slash, and no segment is empty or made of dots alone.
bool isAbsolutePartName(std::string_view name);

/// The part that an internal target leads to, without query and fragment (RFC 3986 section 5.2). A backslash counts as a
/// slash, as some programs take it.
/// @param source  a part name, or "/"
std::string resolveTarget(std::string_view source, std::string_view target);

/// The relationships part of a source, which is a part name or "/".
std::string relationshipsNameOf(std::string_view source);

/// Whether it is the name of a relationships part, in any letter case.
/// @param source  gets the name of its source
bool isRelationshipsName(std::string_view name, std::string& source);

} // namespace opc::standard_signatures
