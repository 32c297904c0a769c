#pragma once

#include <string>

namespace opctool {

/// @file
/// Texts that may come from a package or from the command line, in UTF-8, without what a terminal takes for a
/// command, and without what makes a text look like another one: control characters, those that change the
/// direction of writing, separators of lines and paragraphs, invisible ones.

/// On one line: each becomes a blank.
std::string withoutControlCharacters(const std::string& text);

/// On the lines that the text has.
std::string linesWithoutControlCharacters(const std::string& text);

/// In a JSON document each is escaped; the lines of its layout stay.
std::string escapedJSON(const std::string& document);

} // namespace opctool
