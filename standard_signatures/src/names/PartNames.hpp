#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Part names here are UTF-8 without percent-encoding.

/// Whether it needs no percent-encoding anywhere (RFC 3986 section 2.3).
bool isUnreserved(char c);

/// Resolves each `%` with two hexadecimal digits; everything else stays.
std::string decodePercent(std::string_view text);

/// The same for the name of a part as it is written, where a slash, a backslash and what needs no encoding must not be
/// encoded [M1.7] [M1.8]: what is encoded nevertheless stays, and so it is another name.
std::string decodePartName(std::string_view name);

/// Whether everybody reads the same name of a part from this: it begins with a slash, no segment is empty or made of dots
/// alone, and it has neither a backslash nor white space, nor anything encoded that must not be.
bool isPlainPartName(std::string_view name);

/// What part names are compared by: without regard to the case of ASCII letters.
std::string keyOf(std::string_view name);

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
