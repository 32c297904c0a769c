#pragma once

#include <opc/core/Export.hpp>

#include <string>

namespace opc {

/// @file
/// Texts in UTF-8 that may come from a package or from the command line, without characters that a terminal takes for
/// commands or that make a text look like another one: control characters, those that change the direction of
/// writing, separators of lines and paragraphs, invisible ones. Bytes that aren't UTF-8 become U+FFFD.

/// Whether the character is one of those.
OPC_CORE_EXPORT bool isUnprintable(char32_t character);

/// As one line: each of them becomes a blank.
OPC_CORE_EXPORT std::string withoutControlCharacters(const std::string& text);

/// As the lines of the text.
OPC_CORE_EXPORT std::string linesWithoutControlCharacters(const std::string& text);

/// As JSON: each of them is escaped; the line breaks of the layout stay.
OPC_CORE_EXPORT std::string escapedJSON(const std::string& document);

} // namespace opc
