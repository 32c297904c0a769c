#pragma once

#include <opc/core/Export.hpp>

#include <string>

namespace opc {

/// @file
/// Texts that may come from a package or from the command line, in UTF-8, without what a terminal takes for a
/// command, and without what makes a text look like another one: control characters, those that change the
/// direction of writing, separators of lines and paragraphs, invisible ones. Bytes that aren't UTF-8 become U+FFFD.

/// On one line: each becomes a blank.
OPC_CORE_EXPORT std::string withoutControlCharacters(const std::string& text);

/// On the lines that the text has.
OPC_CORE_EXPORT std::string linesWithoutControlCharacters(const std::string& text);

/// In a JSON document each is escaped; the lines of its layout stay.
OPC_CORE_EXPORT std::string escapedJSON(const std::string& document);

} // namespace opc
