#pragma once

#include <string_view>

namespace opctool {

/// Whether a whole text matches a pattern as the shell has them, in any case of ASCII letters: `*` is any characters, `?` one byte,
/// `[a-z]` a byte of these, `[!a-z]` any other one. A slash or a dot is like any other character.
bool matchesWildcards(std::string_view pattern, std::string_view text);

} // namespace opctool
