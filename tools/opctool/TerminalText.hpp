#pragma once

#include <string>

namespace opctool {

/// A text that may come from a package, in UTF-8, on one line and without what a terminal takes for a command:
/// control characters become blanks.
std::string withoutControlCharacters(const std::string& text);

} // namespace opctool
